#pragma once
// What the editor's controller asks of those who place and erase.

namespace vesk {

// Clears all five layers of the cell at a room position.
void erase_cell(int left, int top);

} // namespace vesk
