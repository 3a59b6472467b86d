#include "platform/uuid.h"

#include <QUuid>

namespace platform {

std::string createUuidString() {
  return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
}

}  // namespace platform
