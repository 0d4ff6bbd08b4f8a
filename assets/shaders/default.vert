#version 100
// The vertex side of every shader that has none of its own.
attribute vec3 in_Position;
attribute vec4 in_Colour;
attribute vec2 in_TextureCoord;

uniform mat4 fb_Matrices[5]; // view, projection, world, world-view, world-view-projection

varying vec2 v_TextureCoord;
varying vec4 v_Colour;

void main() {
  gl_Position = fb_Matrices[4] * vec4(in_Position, 1.0);
  v_TextureCoord = in_TextureCoord;
  v_Colour = in_Colour;
}
