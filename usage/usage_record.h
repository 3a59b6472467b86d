#pragma once

#include <ctime>

#include "platform/clock.h"
#include "usage/collect_message.h"
#include "usage/usage_file.h"

// The writers of the usage records. Each opens the file of the current local day, appends its record and
// closes the file again, so that records are split at midnight and no two writers mix within one. What goes
// wrong stands on the error log or in the system log; the record is then dropped. Any thread; nothing is
// thrown.

// Opens the file of the day `now` in the application directory, making both when missing, and writes the
// header into an empty one. On failure "open log failed" on the error log, and false. A writer hands on the
// time that it puts into its record, so that both are of the same day.
[[nodiscard]] bool TvlDataOpenFile(UsageFile& file, const std::tm& now = platform::currentLocalTime());

// Writes the header of the day `now`. False when it could not be written whole.
[[nodiscard]] bool TvlWriteHeadDataToFile(UsageFile& file, const std::tm& now = platform::currentLocalTime());

// The agent has started: the version and the time.
void TvlWriteStartToFile();

// The agent ends: the time.
void TvlWriteQuitToFile();

// Records what a "-ncdat" message tells, a device event or transfers; "unknown command" in the system log
// when it is neither.
void TvlGetCollectData(CollectMessage message);

// A device event (data command 3 or 4); nothing for any other command.
void TvlWriteMountDataToFile(CollectMessage message);

// The 1 to 30 transfers of a message; with any other count "data count wrong!!" on the error log.
void TvlWriteTransferDataToFile(CollectMessage message);
