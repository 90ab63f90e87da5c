// SPDX-License-Identifier: MIT
// FreeType allocates from ProcessHeap, so its allocations can be refused and counted like all working memory.
#include "FontLibrary.h"

#include <dlfcn.h>

#include "../../Exception.h"
#include "../../ProcessHeap.h"

namespace Graphics {
namespace {

constinit std::mutex g_lock;
std::shared_ptr<FontLibrary> g_library;

/// Called from C code, so a refused allocation is returned as null.
template <class Alloc> void* OrNull(FT_Memory memory, Alloc&& alloc) noexcept {
    try {
        return alloc();
    } catch (...) {
        *static_cast<bool*>(memory->user) = true;
        return nullptr;
    }
}

struct PatternEnd {
    void operator()(FcPattern* p) const noexcept { FcPatternDestroy(p); }
};
using Pattern = std::unique_ptr<FcPattern, PatternEnd>;

const FcChar8* Text(const std::string& s) noexcept { return reinterpret_cast<const FcChar8*>(s.c_str()); }

/// fontconfig has static tables beside every configuration (names of properties, the default languages), a few hundred
/// bytes that only FcFini frees. FcFini would also end the current configuration, which is the host's if it uses
/// fontconfig too. So fontconfig stays loaded when this library is unloaded: its tables stay reachable, and the next
/// load reuses them.
void KeepFontconfigLoaded() noexcept {
    Dl_info info;
    if (dladdr(reinterpret_cast<const void*>(&FcInit), &info) != 0 && info.dli_fname != nullptr) {
        // RTLD_NOLOAD fails, correctly, if fontconfig is linked statically into the program.
        if (void* const handle = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE)) {
            dlclose(handle);
        }
    }
}

} // namespace

std::mutex& FontLibrary::Lock() noexcept { return g_lock; }

std::shared_ptr<FontLibrary> FontLibrary::Get() {
    if (g_library == nullptr) {
        g_library = std::make_shared<FontLibrary>();
    }
    return g_library;
}

FontLibrary::FontLibrary() {
    m_memory.user = &m_refused;
    m_memory.alloc = [](FT_Memory memory, long size) {
        return OrNull(memory, [=] { return ProcessHeap::Alloc(static_cast<size_t>(size)); });
    };
    m_memory.free = [](FT_Memory, void* block) { ProcessHeap::Free(block); };
    m_memory.realloc = [](FT_Memory memory, long, long size, void* block) {
        return OrNull(memory, [=] { return ProcessHeap::Realloc(block, static_cast<size_t>(size)); });
    };
    if (FT_New_Library(&m_memory, &m_freeType) == 0) {
        // A module that is refused memory is omitted silently, hence the check: all or none.
        FT_Add_Default_Modules(m_freeType);
        FT_Set_Default_Properties(m_freeType);
        KeepFontconfigLoaded();
        m_config = WasRefused() ? nullptr : FcInitLoadConfigAndFonts();
    }
    if (m_config == nullptr) {
        if (m_freeType != nullptr) {
            FT_Done_Library(m_freeType);
        }
        GX_RAISE("Graphics::FontLibrary::FontLibrary", "Not enough memory");
    }
}

FontLibrary::~FontLibrary() {
    FcConfigDestroy(m_config);
    FT_Done_Library(m_freeType);
}

FontMatch FontLibrary::Match(const std::string& family, bool bold, bool italic) {
    const Pattern pattern(FcPatternCreate());
    const bool made = pattern != nullptr &&
                      (family.empty() || FcPatternAddString(pattern.get(), FC_FAMILY, Text(family)) == FcTrue) &&
                      FcPatternAddInteger(pattern.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR) &&
                      FcPatternAddInteger(pattern.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN) &&
                      FcPatternAddInteger(pattern.get(), FC_WIDTH, FC_WIDTH_NORMAL) &&
                      FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue) &&
                      FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue) &&
                      FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse) &&
                      FcConfigSubstitute(m_config, pattern.get(), FcMatchPattern);
    if (!made) {
        GX_RAISE("Graphics::FontLibrary::Match", "Not enough memory");
    }
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    const Pattern found(FcFontMatch(m_config, pattern.get(), &result));
    FcChar8* file = nullptr;
    if (found == nullptr || FcPatternGetString(found.get(), FC_FILE, 0, &file) != FcResultMatch) {
        GX_RAISE("Graphics::FontLibrary::Match", "No font found");
    }
    FontMatch match;
    match.file = reinterpret_cast<const char*>(file);
    static_cast<void>(FcPatternGetInteger(found.get(), FC_INDEX, 0, &match.index));
    FcBool embolden = FcFalse;
    if (FcPatternGetBool(found.get(), FC_EMBOLDEN, 0, &embolden) == FcResultMatch) {
        match.embolden = embolden == FcTrue;
    }
    FcMatrix* m = nullptr;
    if (FcPatternGetMatrix(found.get(), FC_MATRIX, 0, &m) == FcResultMatch) {
        match.matrix[0] = m->xx;
        match.matrix[1] = m->xy;
        match.matrix[2] = m->yx;
        match.matrix[3] = m->yy;
    }
    return match;
}

} // namespace Graphics
