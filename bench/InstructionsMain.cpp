// SPDX-License-Identifier: MIT
// gxinstructions: every scene once by the plain kernels and once by the widest set of the processor, each draw between two
// marks, for a tool that counts executed instructions: where there is only an emulator, time says nothing. A mark is a
// call of the system under a number that no system has; CountPlugin.c watches for it and writes the count behind the name
// that stands here. The program is linked with the engine inside, to switch its tables.
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "Engine.h"
#include "Simd/InstructionSets.h"

namespace {

using Graphics::InstructionSet;

constexpr long kMark = 0x47580; // the same in CountPlugin.c

void Backdrop(const Bench::Canvas& canvas) {
    const size_t pixels = static_cast<size_t>(canvas.stride / 4) * static_cast<size_t>(canvas.height);
    for (size_t i = 0; i < pixels; ++i) {
        canvas.pixels[i] = 0xFF000000U | static_cast<uint32_t>((i * 2654435761U >> 20 & 0x3F3F3F) + 0xA0A0A0);
    }
}

/// The second draw is counted: the first one fills the caches, and makes what is derived from images and gradients.
void Count(const Bench::Scene& scene, InstructionSet set) {
    Bench::Canvas canvas{nullptr, scene.canvas, scene.canvas, (scene.canvas * 4 + 63) / 64 * 64};
    const size_t bytes = static_cast<size_t>(canvas.stride) * static_cast<size_t>(canvas.height);
    const std::unique_ptr<void, decltype(&std::free)> memory(std::aligned_alloc(64, bytes), &std::free);
    canvas.pixels = static_cast<uint32_t*>(memory.get());
    Graphics::AllowInstructionSets(set);
    Backdrop(canvas);
    const auto drawing = Bench::kGraphics.prepare(scene, canvas);
    if (drawing == nullptr) {
        return;
    }
    drawing->Draw();
    std::printf("%s\t%s\t", scene.name.c_str(), Graphics::NameOf(Graphics::ActiveInstructionSet()));
    std::fflush(stdout);
    static_cast<void>(syscall(kMark, 0));
    drawing->Draw();
    static_cast<void>(syscall(kMark, 1));
}

} // namespace

int main(int argc, char** argv) {
    const std::string filter = argc > 1 ? argv[1] : "";
    for (const Bench::SceneEntry& entry : Bench::AllScenes()) {
        if (entry.name.find(filter) != std::string::npos) {
            const Bench::Scene scene = entry.make();
            Count(scene, InstructionSet::Plain);
            Count(scene, InstructionSet::AVX512);
        }
    }
    return 0;
}
