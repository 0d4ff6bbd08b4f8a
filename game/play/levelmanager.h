#pragma once
// The conductor of one running section, and the way into and out of play.

namespace vesk {

// A clean start of the level.
void scr_clearvars();
// Leaves play to the editor or the main menu.
void scr_return();

} // namespace vesk
