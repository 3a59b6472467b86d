#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// The data of a picture that comes from outside, without what costs its decoder more than the pixels do: of a
// PNG only the parts that the pixels are made from are left, since a packed text of some kilobytes takes
// megabytes, a thousand times over. Nothing for a PNG with a part that is longer than the data, for which
// memory would be taken all the same, and for a JPEG of so many passes that it would take hours. Other
// formats stay as they are. Any thread.
[[nodiscard]] std::optional<std::string> boundedPictureData(std::string_view bytes);

}  // namespace platform
