#pragma once
// Enters the built-ins of drawing in the registry.

namespace vesk {

void Function_AddDraw();
void Function_AddSurface();
void Function_AddShader();
void Function_AddFont();
void Function_AddSprite();
void Function_AddBackground();
void Function_AddWindow();

} // namespace vesk
