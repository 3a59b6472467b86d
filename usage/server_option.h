#pragma once

// Which server takes the usage records: 1 the product server, 0 the test upload server. The file
// TovalinServerOption.txt of the application directory says so with one byte, the character 1 or 0; nothing
// but a single 0 means 0. A missing file, or one of two bytes and more, is replaced by a 1. Any thread.
[[nodiscard]] int GetTovalinServerOption();
