#pragma once
// The demo's commands; they register themselves and live until the library
// deletes its static data.

namespace Demo {
void createCommands();
} // namespace Demo
