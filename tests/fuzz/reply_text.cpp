// Input: the body of a reply to an upload, which counts as received if it is valid UTF-8.

#include <string_view>

#include <QStringDecoder>

#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"
#include "usage/upload_rules.h"

namespace {

// Second implementation with Qt's decoder, which reports errors at the end.
bool isUtf8BySecondWay(QByteArrayView bytes) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  static_cast<void>(QString(decoder(bytes)));
  return !decoder.hasError();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  fuzz::require(isUtf8(text) == isUtf8BySecondWay(QByteArrayView(text.data(), static_cast<qsizetype>(size))),
                "a text is what two ways take for one");
  return 0;
}
