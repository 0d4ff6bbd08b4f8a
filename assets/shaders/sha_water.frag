#version 100
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
// Waves sideways, by height and time; always opaque.
uniform sampler2D fb_BaseTexture;
uniform float time; // steps
varying vec2 v_TextureCoord;

void main() {
  vec2 coord = v_TextureCoord;
  coord.x += cos(coord.y * 8.0 + time * 0.08) * 0.004;
  gl_FragColor = vec4(texture2D(fb_BaseTexture, coord).rgb, 1.0);
}
