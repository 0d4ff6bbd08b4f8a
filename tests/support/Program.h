#pragma once
// Runs a program that stands beside the running test.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include <sys/wait.h>

namespace vesk {

struct ProgramRun {
  int code;        // -1 when it didn't end by itself
  std::string out; // both of its output streams
};

inline ProgramRun RunProgram(const std::string& name, const std::string& arguments) {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
  EXPECT_TRUE(std::filesystem::exists(program)) << name << " is not built";
  ProgramRun run{-1, ""};
  std::FILE* pipe = popen(("'" + program.string() + "' " + arguments + " 2>&1").c_str(), "r");
  if (!pipe) return run;
  std::array<char, 4096> piece{};
  while (const size_t count = fread(piece.data(), 1, piece.size(), pipe)) run.out.append(piece.data(), count);
  const int status = pclose(pipe);
  if (WIFEXITED(status)) run.code = WEXITSTATUS(status);
  return run;
}

} // namespace vesk
