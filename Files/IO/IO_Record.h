#pragma once
// Input records: one fixed block a frame with the visible keyboard and mouse, little-endian.

namespace vesk {

// At the end of the file the input stays as it was.
void IO_ReadRecord();
void IO_WriteRecord();

} // namespace vesk
