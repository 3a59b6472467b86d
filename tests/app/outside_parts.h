#pragma once

#include <ctime>
#include <functional>
#include <string>
#include <vector>

// Fakes of everything through which the delegate acts on its environment: commands, command pipe, requests,
// web view, bundle watch, threads, timers and clock. Linked instead of the real functions; each only records
// a step.
namespace outside_parts {

// Clears the steps and the replies. The fake clock shows 23:59:30 on 6 March 2024.
void reset();

// Returns the steps in order, including those of forked children: "run COMMAND", "pipe MESSAGE", "GET PATH
// within 3000 ms, no cache", "beacon CATEGORY VALUE", "thread", "watch for 500 ms", "watch started", "watch
// stopped", "timer every 60000 ms", "timer stopped", "clock", "time zone".
[[nodiscard]] std::vector<std::string> steps();

// Sets the reply to requests for `path`; other requests get none.
void reply(const std::string& path, const std::string& body);

// Appends the result of `look` to each following step.
void lookAtEachStep(std::function<std::string()> look);

// Runs the action of the timer that was created last.
void tick();

}  // namespace outside_parts
