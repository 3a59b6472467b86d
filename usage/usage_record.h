#pragma once

#include <ctime>

#include "platform/clock.h"
#include "usage/collect_message.h"
#include "usage/usage_file.h"

// The writers of the usage records. Each opens the file of the current local day, appends its record and
// closes the file, so that records are split at midnight and each record is contiguous. On failure, an error
// is written to the error log or the system log and the record is dropped. Throws nothing. Thread-safe.

// Opens the file of the day `now` in the application directory, creates folder and file if missing, and
// writes the header into an empty file. On failure, writes "open log failed" to the error log and returns
// false. A writer passes the time in its record as `now`, so that both refer to the same day.
[[nodiscard]] bool TvlDataOpenFile(UsageFile& file, const std::tm& now = platform::currentLocalTime());

// Writes the header for the day `now`. Returns false if it could not be written completely.
[[nodiscard]] bool TvlWriteHeadDataToFile(UsageFile& file, const std::tm& now = platform::currentLocalTime());

// Records the start of the agent: version and time.
void TvlWriteStartToFile();

// Records the end of the agent: the time.
void TvlWriteQuitToFile();

// Records the device event or the transfers of a "-ncdat" message. Writes "unknown command" to the system log
// if it holds neither.
void TvlGetCollectData(CollectMessage message);

// Records a device event (data command 3 or 4). Ignores other commands.
void TvlWriteMountDataToFile(CollectMessage message);

// Records the 1 to 30 transfers of a message. For any other count, writes "data count wrong!!" to the error
// log.
void TvlWriteTransferDataToFile(CollectMessage message);
