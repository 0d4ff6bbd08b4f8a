#include "Files/Graphics/Shader.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Registration.h"
#include "Files/Graphics/View.h"

#include <algorithm>
#include <vector>

namespace vesk {

namespace {

ShaderState g_shaders;

ShaderRecord* Find(int32_t shader) {
  return shader >= 0 && static_cast<size_t>(shader) < g_shaders.table.size()
             ? g_shaders.table[static_cast<size_t>(shader)].get()
             : nullptr;
}

int32_t FindUniform(const ShaderRecord& shader, std::string_view name) {
  // Some compilers put "_" before every name of the source.
  for (const std::string& wanted : {"_" + std::string(name), std::string(name)})
    for (size_t i = 0; i < shader.uniforms.size(); ++i)
      if (shader.uniforms[i].name == wanted) return static_cast<int32_t>(i);
  return -1;
}

const DeviceUniform* UniformOfCurrent(int32_t uniform) {
  const ShaderRecord* shader = Find(g_shaders.current);
  if (!shader || uniform < 0 || static_cast<size_t>(uniform) >= shader->uniforms.size()) return nullptr;
  return &shader->uniforms[static_cast<size_t>(uniform)];
}

void ResolveBuiltIn(ShaderRecord& shader) {
  shader.matrices = FindUniform(shader, "fb_Matrices");
  shader.lightsDirection = FindUniform(shader, "fb_Lights_Direction");
  shader.lightsPosRange = FindUniform(shader, "fb_Lights_PosRange");
  shader.lightsColour = FindUniform(shader, "fb_Lights_Colour");
  shader.ambientColour = FindUniform(shader, "fb_AmbientColour");
  shader.lightingEnabled = FindUniform(shader, "fb_LightingEnabled");
  const int32_t base = FindUniform(shader, "fb_BaseTexture");
  shader.baseStage = base >= 0 ? shader.uniforms[static_cast<size_t>(base)].stage : 0;
}

void Compile(ShaderRecord& shader) {
  CompileFailure failure;
  if (!shader.vertex.empty() && !shader.fragment.empty())
    shader.program = Graphics().device->CompileProgram(shader.vertex, shader.fragment, failure);
  if (shader.program) {
    shader.uniforms = Graphics().device->Uniforms(shader.program);
    ResolveBuiltIn(shader);
    return;
  }
  if (failure.text.empty()) {
    ReleaseConsole().Output("Invalid shader (is it marked as incompatible type for this target?) \"%s\":\n",
                            shader.name.c_str());
    shader.error = "Invalid shader";
    return;
  }
  shader.errorInFragment = failure.fragment;
  shader.error = failure.fragment
                     ? "Error in fragment shader \"" + shader.name + "\"\n\n " + failure.text + "\n"
                     : "Error in vertex shader \"" + shader.name + "\":\n\n " + failure.text + "\n";
}

void SetFloats(const ShaderRecord& shader, int32_t uniform, const float* values, int32_t elements) {
  if (uniform < 0) return;
  const DeviceUniform& it = shader.uniforms[static_cast<size_t>(uniform)];
  Graphics().device->SetUniform(it, values, std::min(elements, it.count));
}

void SendMatrices(const ShaderRecord& shader) {
  if (shader.matrices < 0) return;
  const ViewState& view = View();
  const Matrix all[] = {view.matrices[kMatrixView], view.matrices[kMatrixProjection],
                        view.matrices[kMatrixWorld], view.worldView, view.worldViewProjection};
  SetFloats(shader, shader.matrices, all[0].m, 5);
}

// No light is on in the 2-D mode.
void SendLights(const ShaderRecord& shader) {
  const float dark[8 * 4] = {};
  SetFloats(shader, shader.lightsDirection, dark, 8);
  SetFloats(shader, shader.lightsPosRange, dark, 8);
  SetFloats(shader, shader.lightsColour, dark, 8);
  SetFloats(shader, shader.ambientColour, dark, 1);
  const int32_t off = 0;
  if (shader.lightingEnabled >= 0)
    Graphics().device->SetUniformInt(shader.uniforms[static_cast<size_t>(shader.lightingEnabled)], &off, 1);
}

void Apply() {
  if (g_shaders.pending == g_shaders.current) return;
  FlushBatch();
  g_shaders.current = g_shaders.pending;
  IRenderDevice* device = Graphics().device.get();
  if (!device) return;
  const ShaderRecord* shader = Find(g_shaders.current);
  device->UseProgram(shader ? shader->program : 0);
  if (!shader) return;
  SendMatrices(*shader);
  SendLights(*shader);
}

// Before a uniform is written: what is drawn already was meant with the old value.
const DeviceUniform* PrepareUniform(int32_t uniform) {
  FlushBatch();
  Apply();
  return Graphics().device ? UniformOfCurrent(uniform) : nullptr;
}

int32_t ValuesOf(const DeviceUniform& uniform) { return uniform.components * uniform.count; }

// Fills up with zeros what wasn't given.
template <class T> std::vector<T> Padded(const DeviceUniform& uniform, const T* values, int32_t count) {
  std::vector<T> result(values, values + count);
  result.resize(static_cast<size_t>(std::max(count, uniform.components)));
  return result;
}

void Write(const DeviceUniform& uniform, const float* values, int32_t count) {
  const std::vector<float> padded = Padded(uniform, values, count);
  const int32_t elements =
      std::clamp(static_cast<int32_t>(padded.size()) / uniform.components, 1, uniform.count);
  if (uniform.integer) {
    const std::vector<int32_t> whole(padded.begin(), padded.end());
    Graphics().device->SetUniformInt(uniform, whole.data(), elements);
  } else {
    Graphics().device->SetUniform(uniform, padded.data(), elements);
  }
}

bool ReadNumbers(Args values, std::vector<float>& numbers) {
  for (const RValue& value : values) {
    if (!value.IsNumber()) {
      ReportError("Illegal argument type");
      return false;
    }
    numbers.push_back(static_cast<float>(ValueAsReal(value)));
  }
  return true;
}

void SetFromArray(int32_t uniform, const RValue& array, bool wholeElements) {
  if (!array.IsArray()) {
    ReportError("Illegal argument type");
    return;
  }
  const DeviceUniform* it = PrepareUniform(uniform);
  if (!it) return;
  const int32_t length = ArrayLength1d(array);
  if (length < 1 || length > ValuesOf(*it) || (wholeElements && length % it->components != 0)) {
    ReportError("Illegal array count");
    return;
  }
  std::vector<float> numbers;
  for (int32_t i = 0; i < length; ++i) {
    const RValue* element = ArrayElementForRead(array, i);
    if (!element || !element->IsNumber()) {
      ReportError("Illegal argument type");
      return;
    }
    numbers.push_back(static_cast<float>(ValueAsReal(*element)));
  }
  Write(*it, numbers.data(), length);
}

void SetUniformF(int32_t uniform, Args values) { shader_set_uniform_f(uniform, values); }

} // namespace

ShaderState& Shaders() { return g_shaders; }

void Shader_Reset() {
  Shader_DeviceLeaves();
  g_shaders = {};
}

int32_t Shader_Load(std::string_view name, int32_t kind, std::string_view vertex, std::string_view fragment,
                    std::vector<std::string> attributes) {
  auto shader = std::make_unique<ShaderRecord>();
  shader->name = name;
  shader->kind = kind;
  shader->vertex = vertex;
  shader->fragment = fragment;
  shader->attributes = std::move(attributes);
  if (Graphics().device && Graphics().device->HasPrograms()) Compile(*shader);
  g_shaders.table.push_back(std::move(shader));
  return static_cast<int32_t>(g_shaders.table.size()) - 1;
}

void Shader_DeviceArrived() {
  if (!Graphics().device->HasPrograms()) return;
  for (const auto& shader : g_shaders.table)
    if (shader && !shader->program && shader->error.empty()) Compile(*shader);
}

void Shader_DeviceLeaves() {
  for (const auto& shader : g_shaders.table) {
    if (!shader) continue;
    if (shader->program && Graphics().device) Graphics().device->ReleaseProgram(shader->program);
    shader->program = 0;
    shader->uniforms.clear();
  }
  g_shaders.current = g_shaders.pending = -1;
}

void Shader_MatricesChanged() {
  if (const ShaderRecord* shader = Find(g_shaders.current)) SendMatrices(*shader);
}

int32_t Shader_BaseStage() {
  const ShaderRecord* shader = Find(g_shaders.current);
  return shader ? shader->baseStage : 0;
}

void shader_set(int32_t shader) {
  if (shader != -1) {
    const ShaderRecord* it = Find(shader);
    if (!it) {
      ReportError("Illegal shader handle");
      return;
    }
    if (!it->error.empty()) {
      ReportShaderError(it->errorInFragment ? ShaderStage::kFragment : ShaderStage::kVertex, it->error);
      return;
    }
  }
  g_shaders.pending = shader;
  Apply();
}

void shader_reset() {
  FlushBatch();
  g_shaders.pending = -1;
  Apply();
}

int32_t shader_current() { return g_shaders.current; }

std::string shader_get_name(int32_t shader) {
  if (const ShaderRecord* it = Find(shader)) return it->name;
  ReportError("Illegal shader index %d", shader);
  return "";
}

bool shader_is_compiled(int32_t shader) {
  if (const ShaderRecord* it = Find(shader)) return it->program != 0;
  ReportError("Illegal shader handle");
  return false;
}

int32_t shader_get_uniform(int32_t shader, std::string_view name) {
  if (const ShaderRecord* it = Find(shader)) return FindUniform(*it, name);
  ReportError("Illegal shader handle");
  return -1;
}

int32_t shader_get_sampler_index(int32_t shader, std::string_view name) {
  const ShaderRecord* it = Find(shader);
  if (!it) {
    ReportError("Illegal shader handle");
    return -1;
  }
  const int32_t uniform = FindUniform(*it, name);
  return uniform >= 0 && it->uniforms[static_cast<size_t>(uniform)].sampler
             ? it->uniforms[static_cast<size_t>(uniform)].stage
             : -1;
}

bool shaders_are_supported() { return !Graphics().device || Graphics().device->HasPrograms(); }

void Shader_SetUniform(int32_t uniform, const float* values, int32_t count) {
  if (const DeviceUniform* it = PrepareUniform(uniform)) Write(*it, values, std::min(count, it->components));
}

void shader_set_uniform_f(int32_t uniform, Args values) {
  std::vector<float> numbers;
  if (ReadNumbers(values, numbers) && !numbers.empty())
    Shader_SetUniform(uniform, numbers.data(), static_cast<int32_t>(numbers.size()));
}

void shader_set_uniform_i(int32_t uniform, Args values) { shader_set_uniform_f(uniform, values); }

void shader_set_uniform_f_array(int32_t uniform, const RValue& array) { SetFromArray(uniform, array, false); }
void shader_set_uniform_i_array(int32_t uniform, const RValue& array) { SetFromArray(uniform, array, false); }
void shader_set_uniform_matrix_array(int32_t uniform, const RValue& array) {
  SetFromArray(uniform, array, true);
}

void shader_set_uniform_matrix(int32_t uniform) {
  const DeviceUniform* it = PrepareUniform(uniform);
  if (it && it->components == 16) Write(*it, View().matrices[kMatrixWorld].m, 16);
}

void Function_AddShader() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&shader_set>("shader_set"),
      Builtin<&shader_reset>("shader_reset"),
      Builtin<&shader_current>("shader_current"),
      Builtin<&shader_get_name>("shader_get_name"),
      Builtin<&shader_is_compiled>("shader_is_compiled"),
      Builtin<&shader_get_uniform>("shader_get_uniform"),
      Builtin<&shader_get_sampler_index>("shader_get_sampler_index"),
      Builtin<&SetUniformF>("shader_set_uniform_f"),
      Builtin<&shader_set_uniform_i>("shader_set_uniform_i"),
      Builtin<&shader_set_uniform_f_array>("shader_set_uniform_f_array"),
      Builtin<&shader_set_uniform_i_array>("shader_set_uniform_i_array"),
      Builtin<&shader_set_uniform_matrix>("shader_set_uniform_matrix"),
      Builtin<&shader_set_uniform_matrix_array>("shader_set_uniform_matrix_array"),
      Builtin<&shaders_are_supported>("shaders_are_supported"),
      Builtin<&shader_enable_corner_id>("shader_enable_corner_id"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
