#include "Files/Graphics_API/OpenGL/OpenGLProgram.h"

#include <epoxy/gl.h>

#include <algorithm>

namespace vesk {

const char* const kPlainVertexShader = R"(#version 100
attribute vec3 in_Position;
attribute vec4 in_Colour;
attribute vec2 in_TextureCoord;
uniform mat4 fb_Matrices[5];
varying vec4 v_colour;
varying vec2 v_coordinate;
void main() {
  gl_Position = fb_Matrices[4] * vec4(in_Position, 1.0);
  gl_PointSize = 1.0;
  v_colour = in_Colour;
  v_coordinate = in_TextureCoord;
}
)";

const char* const kPlainFragmentShader = R"(#version 100
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
uniform sampler2D fb_BaseTexture;
uniform float alphaReference;
varying vec4 v_colour;
varying vec2 v_coordinate;
void main() {
  vec4 colour = v_colour * texture2D(fb_BaseTexture, v_coordinate);
  if (colour.a <= alphaReference) discard;
  gl_FragColor = colour;
}
)";

namespace {

std::string InfoLog(GLuint object, bool program) {
  GLint length = 0;
  program ? glGetProgramiv(object, GL_INFO_LOG_LENGTH, &length)
          : glGetShaderiv(object, GL_INFO_LOG_LENGTH, &length);
  std::string text(static_cast<size_t>(std::max(length, 1)), '\0');
  program ? glGetProgramInfoLog(object, length, nullptr, text.data())
          : glGetShaderInfoLog(object, length, nullptr, text.data());
  text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
  return text;
}

GLuint CompileStage(GLenum stage, const std::string& source, CompileFailure& failure) {
  const GLuint shader = glCreateShader(stage);
  const char* text = source.c_str();
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  GLint good = 0;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &good);
  if (good) return shader;
  failure = {stage == GL_FRAGMENT_SHADER, InfoLog(shader, false)};
  if (failure.text.empty()) failure.text = "the compiler gives no reason";
  glDeleteShader(shader);
  return 0;
}

struct UniformKind {
  int32_t components;
  bool integer;
};
UniformKind KindOf(GLenum type) {
  switch (type) {
  case GL_FLOAT: return {1, false};
  case GL_FLOAT_VEC2: return {2, false};
  case GL_FLOAT_VEC3: return {3, false};
  case GL_FLOAT_VEC4:
  case GL_FLOAT_MAT2: return {4, false};
  case GL_FLOAT_MAT3: return {9, false};
  case GL_FLOAT_MAT4: return {16, false};
  case GL_INT_VEC2:
  case GL_BOOL_VEC2: return {2, true};
  case GL_INT_VEC3:
  case GL_BOOL_VEC3: return {3, true};
  case GL_INT_VEC4:
  case GL_BOOL_VEC4: return {4, true};
  default: return {1, true};
  }
}

void ReadUniforms(OpenGLProgram& program) {
  GLint count = 0;
  glGetProgramiv(program.name, GL_ACTIVE_UNIFORMS, &count);
  int32_t stage = 0;
  for (GLuint i = 0; i < static_cast<GLuint>(count); ++i) {
    char name[256] = {};
    GLint size = 0;
    GLenum type = 0;
    glGetActiveUniform(program.name, i, sizeof(name), nullptr, &size, &type, name);
    DeviceUniform uniform;
    uniform.name = name;
    uniform.name = uniform.name.substr(0, uniform.name.find('['));
    uniform.location = glGetUniformLocation(program.name, name);
    const auto [components, integer] = KindOf(type);
    uniform.components = components;
    uniform.integer = integer;
    uniform.count = size;
    uniform.sampler = type == GL_SAMPLER_2D;
    uniform.stage = uniform.sampler ? stage++ : 0;
    if (uniform.sampler) glUniform1i(uniform.location, uniform.stage);
    if (uniform.name == "fb_Matrices") {
      program.matrices = uniform.location;
      program.matrixCount = size;
    }
    if (uniform.name == "alphaReference") program.alphaReference = uniform.location;
    program.uniforms.push_back(uniform);
  }
}

} // namespace

OpenGLProgram OpenGL_Compile(const std::string& vertex, const std::string& fragment,
                             CompileFailure& failure) {
  OpenGLProgram program;
  const GLuint first = CompileStage(GL_VERTEX_SHADER, vertex, failure);
  if (!first) return program;
  const GLuint second = CompileStage(GL_FRAGMENT_SHADER, fragment, failure);
  if (!second) {
    glDeleteShader(first);
    return program;
  }
  program.name = glCreateProgram();
  glAttachShader(program.name, first);
  glAttachShader(program.name, second);
  glBindAttribLocation(program.name, kAttributePosition, "in_Position");
  glBindAttribLocation(program.name, kAttributeColour, "in_Colour");
  glBindAttribLocation(program.name, kAttributeTexture, "in_TextureCoord");
  glLinkProgram(program.name);
  glDeleteShader(first);
  glDeleteShader(second);
  GLint good = 0;
  glGetProgramiv(program.name, GL_LINK_STATUS, &good);
  if (!good) {
    failure = {true, InfoLog(program.name, true)};
    glDeleteProgram(program.name);
    return {};
  }
  glUseProgram(program.name);
  ReadUniforms(program);
  return program;
}

void OpenGL_SetUniform(const DeviceUniform& uniform, const float* values, int32_t elements) {
  const GLint at = uniform.location;
  switch (uniform.components) {
  case 1: glUniform1fv(at, elements, values); break;
  case 2: glUniform2fv(at, elements, values); break;
  case 3: glUniform3fv(at, elements, values); break;
  case 4: glUniform4fv(at, elements, values); break;
  case 9: glUniformMatrix3fv(at, elements, GL_FALSE, values); break;
  default: glUniformMatrix4fv(at, elements, GL_FALSE, values); break;
  }
}

void OpenGL_SetUniformInt(const DeviceUniform& uniform, const int32_t* values, int32_t elements) {
  const GLint at = uniform.location;
  switch (uniform.components) {
  case 1: glUniform1iv(at, elements, values); break;
  case 2: glUniform2iv(at, elements, values); break;
  case 3: glUniform3iv(at, elements, values); break;
  default: glUniform4iv(at, elements, values); break;
  }
}

} // namespace vesk
