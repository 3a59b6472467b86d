#pragma once

#include "platform/file_descriptor.h"

namespace test_support {

using platform::FileDescriptor;

}  // namespace test_support
