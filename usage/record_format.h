#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Constants of the usage record file and of the "-ncdat" message (doc/usage_record_format.md), shared by
// writers, senders and readers. Frozen: doc/compatibility.md.
namespace record_format {

inline constexpr std::string_view magic = "TVLD";
inline constexpr std::string_view fixedVersion = "1.0.0.0";  // follows every bundle version
inline constexpr std::string_view unknownBundleVersion = "0.0.0";
inline constexpr std::string_view unknownDeviceName = "Unknown";

// The first byte of an item.
enum class Code : std::uint8_t {
  Identifier = 0x00,
  OperatingSystem = 0x01,  // in the header, after the identifier
  Version = 0x01,          // in the header, and at the beginning of a start record
  StartTime = 0x02,
  Quit = 0x03,
  DeviceEvent3 = 0x04,
  DeviceEvent4 = 0x05,
  TransferKind1 = 0x06,
  TransferKind2 = 0x07,
};

inline constexpr std::size_t dateLength = 10;  // YYYY-MM-DD
inline constexpr std::size_t timeLength = 19;  // YYYY-MM-DD HH:MM:SS
inline constexpr std::size_t sizeFieldWidth = 8;

inline constexpr std::size_t maxIdentifierTextLength = 49;  // including the braces
inline constexpr std::size_t maxBundleVersionLength = 15;
inline constexpr std::size_t maxDeviceNameLength = 63;
inline constexpr std::size_t maxTransferNameLength = 9;

// The maximum record lengths, including the code and the length bytes of texts.
inline constexpr std::size_t maxDeviceEventLength = 1 + 1 + timeLength + 1 + maxDeviceNameLength;
inline constexpr std::size_t maxTransferLength = 1 + 1 + sizeFieldWidth + 1 + maxTransferNameLength;

inline constexpr std::uint8_t lowestOsCode = 64;
inline constexpr std::uint8_t highestOsCode = 68;

// Field offsets in a "-ncdat" message. Integers are little-endian.
namespace message {

inline constexpr std::size_t size = 1024;
inline constexpr std::size_t dataCommandOffset = 10;
inline constexpr std::size_t deviceNameOffset = 14;
inline constexpr std::size_t entryCountOffset = 14;
inline constexpr std::size_t entriesOffset = 18;

inline constexpr std::size_t entrySize = 22;
inline constexpr std::size_t entryKindOffset = 0;
inline constexpr std::size_t entrySizeOffset = 4;
inline constexpr std::size_t entryNameOffset = 12;

inline constexpr std::uint32_t transfers = 0;
inline constexpr std::uint32_t deviceEvent3 = 3;
inline constexpr std::uint32_t deviceEvent4 = 4;

inline constexpr std::uint32_t maxEntries = 30;

inline constexpr std::int32_t entryKind1 = 1;
inline constexpr std::int32_t entryKind2 = 2;

static_assert(entriesOffset + maxEntries * entrySize == 678);
static_assert(deviceNameOffset + maxDeviceNameLength + 1 <= size);

}  // namespace message

}  // namespace record_format
