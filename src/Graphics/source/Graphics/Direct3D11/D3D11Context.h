// SPDX-License-Identifier: MIT
// The state shared by the targets of one thread: the device and everything created with it. A lost device is replaced
// by a new one; the generation number tells targets that their textures are lost.
#pragma once

#include <memory>

#include "D3D11Batch.h"
#include "D3D11BitmapCache.h"
#include "D3D11GradientCache.h"
#include "D3D11Readback.h"
#include "D3D11TexturePool.h"

namespace Graphics {

class D3D11Context {
public:
    /// Raises "D3D11 error" or what the shader compiler raises.
    D3D11Context();
    D3D11Context(const D3D11Context&) = delete;
    D3D11Context& operator=(const D3D11Context&) = delete;
    ~D3D11Context();

    /// False while the last device is lost and no other could be created; the members below must not be used then.
    [[nodiscard]] bool HasDevice() const noexcept { return m_resources != nullptr && !m_resources->device.IsLost(); }
    /// True if the last attempt to create a device failed.
    [[nodiscard]] bool IsWithoutDevice() const noexcept { return m_resources == nullptr; }

    [[nodiscard]] IDXGIFactory1& Factory() const noexcept { return *m_factory.get(); }
    [[nodiscard]] D3D11Device& Device() noexcept { return m_resources->device; }
    [[nodiscard]] D3D11ShaderCache& Shaders() noexcept { return m_resources->shaders; }
    [[nodiscard]] D3D11BitmapCache& Bitmaps() noexcept { return m_resources->bitmaps; }
    [[nodiscard]] D3D11GradientCache& Gradients() noexcept { return m_resources->gradients; }
    [[nodiscard]] D3D11TexturePool& Pool() noexcept { return m_resources->pool; }
    [[nodiscard]] D3D11Readback& Readback() noexcept { return m_resources->readback; }
    [[nodiscard]] const D3D11Readback& Readback() const noexcept { return m_resources->readback; }
    [[nodiscard]] D3D11Batch& Batch() noexcept { return m_resources->batch; }
    [[nodiscard]] D3D11ShaderCompiler& Compiler() noexcept { return m_compiler; }

    /// For tests of the shaders: the GPU also draws what looks different from the software's output.
    [[nodiscard]] bool DrawsAll() const noexcept { return m_drawsAll; }
    void DrawAllForTest(bool on) noexcept { m_drawsAll = on; }

    /// Increases with every new device.
    [[nodiscard]] uint32_t Generation() const noexcept { return m_generation; }
    /// Creates a new device if the last one is lost or could not be created. Raises what the constructor raises.
    void Recover();
    /// As Recover, but also checks for a loss since the last use, and returns false instead of raising.
    [[nodiscard]] bool TryRecover();

private:
    struct Resources {
        explicit Resources(const D3D11ShaderCompiler& compiler);

        D3D11Device device;
        D3D11SamplerState samplers;
        D3D11ShaderCache shaders;
        D3D11BitmapCache bitmaps;
        D3D11GradientCache gradients;
        D3D11TexturePool pool;
        D3D11Readback readback;
        D3D11Batch batch;
    };

    /// Creates all resources of a device or none.
    void Make();

    D3D11ShaderCompiler m_compiler;
    D3D11Ref<IDXGIFactory1> m_factory;
    std::unique_ptr<Resources> m_resources;
    D3D11Counters m_kept; // sums of former devices
    uint32_t m_generation = 0;
    bool m_drawsAll = false;
    D3D11LiveCount<D3D11Context> m_live;
};

} // namespace Graphics
