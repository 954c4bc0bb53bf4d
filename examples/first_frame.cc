// Renders one frame with an effect and prints the effect's name: first_frame MODULE.
#include <cstdio>
#include <string>

#include "runtime/hfx/host.h"

int main(int count, char** words) {
  if (count != 2) return 2;
  std::string error;
  const auto module = hfx::Module::Load(words[1], &error);
  const auto effect = module ? hfx::Effect::Create(*module, 1, &error) : nullptr;
  if (!effect) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  hfx::ImageBuffer input(64, 48, hfxColorspaceRGB), output(64, 48, hfxColorspaceRGB);
  hfx::RenderState state;
  if (!effect->BeginRender(0, &error) ||
      !effect->Render(state, input.image(), output.image(), &error) || !effect->EndRender(&error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  std::printf("%s\n", hfx::DescriptionOf(effect->model()).name.c_str());
  return 0;
}
