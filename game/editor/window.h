#pragma once
// What all editor windows share.
#include "Files/Code/Self.h"

#include <string>
#include <string_view>

namespace vesk {

// obj_editor_window's own events, which its children inherit.
void window_create(Self window);
void window_destroy(Self window);
void window_notified(Self window); // the sound of a click; closes on "CLOSE"
void window_draw(Self window);

// The tab buttons at the right end of the title bar. `at` counts from 0 of `tabs`.
void make_tab_button(Self window, int at, int tabs, std::string_view notify, std::string_view tooltip,
                     int icon, int iconFrame);
// Takes the content away and shows another tab; user event 1 builds it.
void show_tab(Self window, int tab, std::string_view title);
// A button of the content grid, counted from 0 along rows of fifteen.
void make_grid_button(Self window, int at, double top, std::string_view label, int icon, int iconFrame);
// Rows that the content grid takes.
int grid_rows(int buttons);

// What the choice stands for in the sections' layers.
enum class Placing { kObject, kModifier, kMarker, kTile };

// A choice that follows the mouse; the former one is gone by then.
Self choose_code(Placing kind, const std::string& code);
Self choose_tiles(int atlasLeft, int atlasTop, int columns, int rows, bool background);

// The section map that the editor shows.
int edited_section();

} // namespace vesk
