#version 100
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
// Seven taps sideways. The weights of a Gaussian of sigma 2 are made by multiplication from tap to tap.
uniform sampler2D fb_BaseTexture;
varying vec2 v_TextureCoord;

const float kSigma = 2.0;
const float kStep = 0.001953125; // one pixel of a texture 512 wide
const int kTaps = 3;             // on each side

void main() {
  vec3 weight;
  weight.x = 1.0 / (sqrt(2.0 * 3.14159265) * kSigma);
  weight.y = exp(-0.5 / (kSigma * kSigma));
  weight.z = weight.y * weight.y;
  vec4 sum = texture2D(fb_BaseTexture, v_TextureCoord) * weight.x;
  float weights = weight.x;
  for (int i = 1; i <= kTaps; ++i) {
    weight.x *= weight.y;
    weight.y *= weight.z;
    vec2 offset = vec2(float(i) * kStep, 0.0);
    sum += texture2D(fb_BaseTexture, v_TextureCoord - offset) * weight.x;
    sum += texture2D(fb_BaseTexture, v_TextureCoord + offset) * weight.x;
    weights += 2.0 * weight.x;
  }
  gl_FragColor = sum / weights;
}
