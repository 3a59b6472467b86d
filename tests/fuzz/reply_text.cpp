// Any bytes as the body of a reply to an upload: whether it counts as received.

#include <string_view>

#include <QStringDecoder>

#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"
#include "usage/upload_rules.h"

namespace {

// The toolkit's decoder, which stops at no damage, tells at the end.
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
