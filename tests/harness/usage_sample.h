#pragma once

#include <string>

namespace test_support {

using namespace std::string_literals;

// A usage record file with every kind of record. Its items begin at the offsets 0, 14, 54, 56, 71, 107, 128,
// 153, 180, 194 and 205.
inline const std::string kUsageHeader =
    "TVLD2024-03-07"
    "\x00\x26{00112233-4455-6677-8899-AABBCCDDEEFF}"
    "\x01\x44"
    "\x01\x05"
    "1.4.2"
    "\x07"
    "1.0.0.0"s;

inline const std::string kUsageRecords =
    "\x01\x05"
    "1.4.2\x07"
    "1.0.0.0"
    "\x02\x13"
    "2024-03-07 09:05:00"
    "\x03\x13"
    "2024-03-07 09:05:01"
    "\x04\x13"
    "2024-03-07 09:05:02\x03Pad"
    "\x05\x13"
    "2024-03-07 09:05:59\x05"
    "a\"\n\xC3\xA9"
    "\x06\x08\x01\x02\x03\x04\x05\x06\x07\x08\x03jpg"
    "\x07\x08\xff\xff\xff\xff\xff\xff\xff\xff\x00"
    "\x06\x08\x00\x00\x00\x00\x00\x00\x00\x80\x02\xff!"s;

inline const std::string kUsageFile = kUsageHeader + kUsageRecords;

}  // namespace test_support
