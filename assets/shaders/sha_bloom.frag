#version 100
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
// Doubles every channel; the target saturates.
uniform sampler2D fb_BaseTexture;
varying vec2 v_TextureCoord;
varying vec4 v_Colour;

void main() {
  vec4 colour = texture2D(fb_BaseTexture, v_TextureCoord) * v_Colour;
  gl_FragColor = colour + colour;
}
