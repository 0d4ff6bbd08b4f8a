#pragma once
// Shaders of the container and their uniforms. A handle is the index of the record.
#include "Files/Function/Function.h"
#include "Files/Graphics_API/RenderDevice.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct ShaderRecord {
  std::string name;
  int32_t kind = 1;
  std::string vertex, fragment; // GL ES sources
  std::vector<std::string> attributes;
  std::string error; // empty when it compiled, or was not tried yet
  bool errorInFragment = false;
  ProgramHandle program = 0;
  std::vector<DeviceUniform> uniforms; // in the order of the handles
  int32_t baseStage = 0;
  int32_t matrices = -1, lightsDirection = -1, lightsPosRange = -1, lightsColour = -1, ambientColour = -1,
          lightingEnabled = -1; // uniform handles
};

struct ShaderState {
  std::vector<std::unique_ptr<ShaderRecord>> table;
  int32_t current = -1, pending = -1;
};
ShaderState& Shaders();
void Shader_Reset();

// Adds a shader of the container and compiles it; a failure is kept in the record. Returns its handle.
// Without a device it is compiled when one arrives.
int32_t Shader_Load(std::string_view name, int32_t kind, std::string_view vertex, std::string_view fragment,
                    std::vector<std::string> attributes);
void Shader_DeviceArrived();
void Shader_DeviceLeaves();
void Shader_MatricesChanged(); // of the shader in use
int32_t Shader_BaseStage();    // texture stage of the batch's texture

void shader_set(int32_t shader);
void shader_reset();
int32_t shader_current();
std::string shader_get_name(int32_t shader);
bool shader_is_compiled(int32_t shader);
int32_t shader_get_uniform(int32_t shader, std::string_view name); // -1 none
int32_t shader_get_sampler_index(int32_t shader, std::string_view name);
bool shaders_are_supported();
void shader_set_uniform_f(int32_t uniform, Args values);
void shader_set_uniform_i(int32_t uniform, Args values);
void shader_set_uniform_f_array(int32_t uniform, const RValue& array);
void shader_set_uniform_i_array(int32_t uniform, const RValue& array);
void shader_set_uniform_matrix(int32_t uniform);
void shader_set_uniform_matrix_array(int32_t uniform, const RValue& array);
// As rules call it: shader_set_uniform_f(u_time, t).
void Shader_SetUniform(int32_t uniform, const float* values, int32_t count);
template <class... V>
requires(sizeof...(V) >= 1 && sizeof...(V) <= 4 &&
         (!std::is_same_v<std::remove_cvref_t<V>, Args> &&
          ...)) void shader_set_uniform_f(int32_t uniform, const V&... values) {
  const float numbers[] = {static_cast<float>(values)...};
  Shader_SetUniform(uniform, numbers, sizeof...(V));
}

} // namespace vesk
