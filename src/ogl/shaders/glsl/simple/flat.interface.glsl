#pragma include("simple/passed.glsl")
