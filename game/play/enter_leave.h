#pragma once
// The way into play and the way out of it.

namespace vesk {

// A clean start of the level.
void scr_clearvars();
// Leaves play to the editor or the main menu.
void scr_return();

} // namespace vesk
