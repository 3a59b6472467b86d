#pragma once

// Returns which server receives the usage records: 1 for the product server, 0 for the test upload server.
// TovalinServerOption.txt in the application directory holds one byte, '1' or '0'; only a single '0' means 0.
// A missing file, or one of two or more bytes, is replaced by a '1'. Thread-safe.
[[nodiscard]] int GetTovalinServerOption();
