#pragma once
// Programs of OpenGL ES 2.0: compiling, their uniforms, and the plain one that serves when no shader is set.
#include "Files/Graphics_API/RenderDevice.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

enum OpenGLAttribute : uint32_t { kAttributePosition, kAttributeColour, kAttributeTexture };

struct OpenGLProgram {
  uint32_t name = 0; // 0: it did not compile
  int32_t matrices = -1, matrixCount = 0;
  int32_t alphaReference = -1;
  std::vector<DeviceUniform> uniforms;
};

extern const char* const kPlainVertexShader;
extern const char* const kPlainFragmentShader;

OpenGLProgram OpenGL_Compile(const std::string& vertex, const std::string& fragment, CompileFailure& failure);
void OpenGL_SetUniform(const DeviceUniform& uniform, const float* values, int32_t elements);
void OpenGL_SetUniformInt(const DeviceUniform& uniform, const int32_t* values, int32_t elements);

} // namespace vesk
