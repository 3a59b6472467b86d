#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Removes from untrusted picture data what can cost the decoder more than the pixels do. Of a PNG, keeps only
// the chunks that define pixels, because a compressed text chunk of some kilobytes can expand a thousandfold.
// Returns nullopt for a PNG with a chunk longer than the data, for which a decoder would still allocate
// memory, and for a JPEG with so many scans that decoding would take hours. Returns other formats unchanged.
// Thread-safe.
[[nodiscard]] std::optional<std::string> boundedPictureData(std::string_view bytes);

}  // namespace platform
