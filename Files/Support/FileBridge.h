#pragma once
// The eight functions of the file library "nsfs.dll", as native code. Scripts reach them through
// external_define with that name; no file of the name has to be there.
//
// Paths are relative to the game's directory or absolute. A written file appears whole when it is closed, or
// not at all: until then the old one stays. What can't be opened, written or closed is an error report that
// says why.
#include <string>

namespace vesk {

// True for the library's name, alone or in the game's directory, in any case.
bool FileBridge_IsLibrary(const std::string& path);
// The entry point, to be called by the convention of external functions; null for an unknown name.
void* FileBridge_Find(const std::string& function);
// Closes all files; what was being written and not closed is dropped.
void FileBridge_Reset();

// The typed forms. Files are numbers from 1; -1 when opening failed. A line has no limit of length.
double FileBridge_OpenWrite(const char* path);
double FileBridge_WriteLine(double file, const char* text); // 1, or 0 on failure
double FileBridge_OpenRead(const char* path);
const char* FileBridge_ReadLine(double file); // without its end, "" past the end; valid until the next call
double FileBridge_Close(double file);         // 1, or 0 when the file could not be written
double FileBridge_Exists(const char* path);
const char* FileBridge_FindFirst(const char* pattern); // bare file name or ""; valid until the next call
const char* FileBridge_FindNext();

} // namespace vesk
