#pragma once

#include <ctime>
#include <functional>
#include <string>
#include <vector>

// This program's own bodies of what the delegate reaches the outside through, linked instead of the agent's:
// commands, command pipe, requests, web view, watch on the bundle, threads, timers and the clock. None does
// anything but take a step down.
namespace outside_parts {

// Drops the steps and the replies. The clock shows 23:59:30 on 6 March 2024.
void reset();

// What was asked for, in its order and also in forked copies of this process:
// "run COMMAND", "pipe MESSAGE", "GET PATH within 3000 ms, no cache", "beacon CATEGORY VALUE", "thread",
// "watch for 500 ms", "watch started", "watch stopped", "timer every 60000 ms", "timer stopped", "clock",
// "time zone".
[[nodiscard]] std::vector<std::string> steps();

// What requests for this path are answered with; others get no reply.
void reply(const std::string& path, const std::string& body);

// What `look` returns is put behind each step from now on.
void lookAtEachStep(std::function<std::string()> look);

// What the timer that was made last does at each tick.
void tick();

}  // namespace outside_parts
