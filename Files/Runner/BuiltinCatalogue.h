#pragma once
// The built-ins that this runner promises, apart from where each is written: what the registry must hold,
// with which arguments, and what is left out on purpose.
#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

struct CataloguedBuiltin {
  std::string family;
  std::string name;
  int argc = 0;       // exact, or kAnyCount
  std::string reason; // why it is left out; empty for one that must be there
};
// In families; each name once.
std::vector<CataloguedBuiltin> Builtin_Catalogue();

// Against the registry as it is filled now: every promise that is not kept and every argument count that
// differs, in words, one an entry.
std::vector<std::string> Builtin_Check();

// One line a built-in: family, name, number of arguments ("any" for any number), "implemented" or "not
// implemented" with the reason. Those that the registry holds beyond the catalogue come last.
std::string Builtin_List();

// Fills the registry as a start of the program does; the caller resets it.
void Builtin_RegisterAll();

} // namespace vesk
