#include "Files/Function/Function_Ini.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Support/Ini.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"

#include <cstdlib>
#include <optional>

namespace vesk {

namespace {

std::optional<IniFile> g_open;

IniFile* ForReading() {
  if (g_open) return &*g_open;
  ReportError("Trying to read from undefined INI file");
  return nullptr;
}
IniFile* ForChanging() {
  if (g_open) return &*g_open;
  ReportError("Trying to change undefined INI file");
  return nullptr;
}

void Close() {
  std::string why;
  if (g_open && !g_open->Save(&why)) ReportError("The INI file can't be written: " + why, false);
  g_open.reset();
}

} // namespace

void Ini_Reset() { g_open.reset(); }

void ini_open(std::string_view fileName) {
  Close();
  const std::string name(fileName);
  std::string text;
  std::string why;
  const std::string found = Files_FindForReading(name);
  if (!found.empty() && !File_ReadAll(found, text, &why))
    ReportError("The INI file can't be read: " + why, false);
  // A name outside the save area gets no file: closing then saves nothing.
  const std::string target = Files_SavePath(name);
  if (target.empty()) ReportError("The INI file \"" + name + "\" lies outside the save area", false);
  g_open = IniFile::FromString(text, target);
}

void ini_open_from_string(const RValue& text) {
  Close();
  g_open = IniFile::FromString(text.Text());
}

std::string ini_close() {
  std::string text = g_open ? g_open->Serialise() : std::string();
  Close();
  return text;
}

std::string ini_read_string(std::string_view section, std::string_view key, const RValue& fallback) {
  IniFile* file = ForReading();
  const IniEntry* entry = file ? file->FindEntry(section, key) : nullptr;
  return entry ? entry->value : ValueAsText(fallback);
}

double ini_read_real(std::string_view section, std::string_view key, const RValue& fallback) {
  IniFile* file = ForReading();
  const IniEntry* entry = file ? file->FindEntry(section, key) : nullptr;
  return entry ? std::strtod(entry->value.c_str(), nullptr) : ValueAsReal(fallback);
}

void ini_write_string(std::string_view section, std::string_view key, std::string_view value) {
  if (IniFile* file = ForReading()) file->Write(section, key, value);
}

void ini_write_real(std::string_view section, std::string_view key, double value) {
  if (IniFile* file = ForReading()) file->Write(section, key, FormatText("%f", value));
}

bool ini_key_exists(std::string_view section, std::string_view key) {
  IniFile* file = ForReading();
  return file && file->FindEntry(section, key);
}

bool ini_section_exists(std::string_view section) {
  IniFile* file = ForReading();
  return file && file->FindSection(section);
}

void ini_key_delete(std::string_view section, std::string_view key) {
  if (IniFile* file = ForChanging()) file->DeleteKey(section, key);
}

void ini_section_delete(std::string_view section) {
  if (IniFile* file = ForChanging()) file->DeleteSection(section);
}

namespace {

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&ini_open>("ini_open"),
    Builtin<&ini_open_from_string>("ini_open_from_string"),
    Builtin<&ini_close>("ini_close"),
    Builtin<&ini_read_string>("ini_read_string"),
    Builtin<&ini_read_real>("ini_read_real"),
    Builtin<&ini_write_string>("ini_write_string"),
    Builtin<&ini_write_real>("ini_write_real"),
    Builtin<&ini_key_exists>("ini_key_exists"),
    Builtin<&ini_section_exists>("ini_section_exists"),
    Builtin<&ini_key_delete>("ini_key_delete"),
    Builtin<&ini_section_delete>("ini_section_delete"),
};

} // namespace

void Function_AddIni() { Function_Add(kBuiltins); }

} // namespace vesk
