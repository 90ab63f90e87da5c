// SPDX-License-Identifier: MIT
// Regions as a host sees them: the questions, their edges, the order of enumeration, and who owns what.
#include <GX/GX.h>
#include <gtest/gtest.h>

#include <string>

namespace {

std::string Text(const GXIntRect& r) {
    return " " + std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
           std::to_string(r.bottom);
}

std::string RectsOf(GXRegion region) {
    std::string text;
    EXPECT_EQ(GXRegionEnumRects(
                  region, [](void* c, const GXIntRect* r) { *static_cast<std::string*>(c) += Text(*r); }, &text),
              GXResultSuccess);
    return text;
}

GXRegion FromRect(const GXIntRect& rect) {
    GXRegion region = nullptr;
    EXPECT_EQ(GXCreateRegionFromRect(&rect, &region), GXResultSuccess);
    return region;
}

GXRegion Combined(GXRegion a, const GXIntRect& rect, uint32_t mode) {
    GXRegion out = nullptr, same = nullptr, b = FromRect(rect);
    EXPECT_EQ(GXRegionCombineRect(a, &rect, mode, &out), GXResultSuccess);
    EXPECT_EQ(GXRegionCombine(a, b, mode, &same), GXResultSuccess);
    EXPECT_EQ(RectsOf(out), RectsOf(same));
    GXObjectRelease(same);
    GXObjectRelease(b);
    return out;
}

template <class Call, class... Arguments> bool Asks(const Call& call, Arguments... arguments) {
    uint8_t answer = 7;
    EXPECT_EQ(call(arguments..., &answer), GXResultSuccess);
    EXPECT_LE(answer, 1);
    return answer == 1;
}

} // namespace

TEST(RegionInterface, CombinesAndEnumerates) {
    const GXRegion a = FromRect({0, 0, 10, 10});
    const struct {
        GXIntRect rect;
        uint32_t mode;
        const char* expected;
    } rows[] = {
        {{10, 0, 20, 10}, GXCombineUnion, " 0,0,20,10"},
        {{0, 10, 10, 15}, GXCombineUnion, " 0,0,10,15"},
        {{5, 5, 15, 15}, GXCombineUnion, " 0,0,10,5 0,5,15,10 5,10,15,15"},
        {{5, 5, 15, 15}, GXCombineIntersection, " 5,5,10,10"},
        {{5, 5, 15, 15}, GXCombineExclusiveOr, " 0,0,10,5 0,5,5,10 10,5,15,10 5,10,15,15"},
        {{5, 5, 15, 15}, GXCombineDifference, " 0,0,10,5 0,5,5,10"},
        {{3, 3, 6, 6}, GXCombineDifference, " 0,0,10,3 0,3,3,6 6,3,10,6 0,6,10,10"},
        {{0, 0, 10, 10}, GXCombineDifference, ""},
        {{0, 0, 10, 10}, GXCombineExclusiveOr, ""},
        {{9, 4, 1, 6}, GXCombineUnion, " 0,0,10,10"},
        {{9, 4, 1, 6}, GXCombineIntersection, ""},
    };
    for (const auto& row : rows) {
        const GXRegion out = Combined(a, row.rect, row.mode);
        EXPECT_EQ(RectsOf(out), row.expected) << "mode " << row.mode << Text(row.rect);
        GXObjectRelease(out);
    }
    GXRegion out = nullptr;
    const GXIntRect r{};
    EXPECT_EQ(GXRegionCombine(a, a, 4, &out), GXResultInvalidArgument);
    EXPECT_EQ(GXRegionCombineRect(a, &r, 4, &out), GXResultInvalidArgument);
    EXPECT_EQ(out, nullptr);
    GXObjectRelease(a);
}

TEST(RegionInterface, AnswersQuestions) {
    const GXRegion a = FromRect({0, 0, 10, 10});
    const GXRegion ring = Combined(a, {3, 3, 6, 6}, GXCombineDifference);
    GXRegion empty = nullptr;
    EXPECT_EQ(GXCreateRegion(&empty), GXResultSuccess);

    const GXIntPoint corner{10, 10}, outside{11, 10}, hole{4, 4};
    EXPECT_TRUE(Asks(GXRegionContainsPoint, ring, &corner)); // the bound with all its sides, holes and all
    EXPECT_TRUE(Asks(GXRegionContainsPoint, ring, &hole));
    EXPECT_FALSE(Asks(GXRegionContainsPoint, ring, &outside));

    const GXIntRect all{0, 0, 10, 10}, inHole{3, 3, 6, 6}, overEdge{5, 5, 7, 7}, inside{6, 0, 10, 10}, none{8, 8, 8, 9};
    EXPECT_TRUE(Asks(GXRegionContainsRect, a, &all));
    EXPECT_FALSE(Asks(GXRegionContainsRect, ring, &all));
    EXPECT_TRUE(Asks(GXRegionContainsRect, ring, &inside));
    EXPECT_FALSE(Asks(GXRegionContainsRect, ring, &overEdge));
    EXPECT_TRUE(Asks(GXRegionContainsRect, ring, &none));
    EXPECT_TRUE(Asks(GXRegionHasIntersectionWithRect, ring, &overEdge));
    EXPECT_FALSE(Asks(GXRegionHasIntersectionWithRect, ring, &inHole));
    EXPECT_FALSE(Asks(GXRegionHasIntersectionWithRect, ring, &none));

    EXPECT_TRUE(Asks(GXRegionContains, a, ring));
    EXPECT_FALSE(Asks(GXRegionContains, ring, a));
    EXPECT_TRUE(Asks(GXRegionContains, ring, ring));
    EXPECT_TRUE(Asks(GXRegionContains, empty, empty));
    EXPECT_TRUE(Asks(GXRegionHasIntersection, a, ring));
    EXPECT_FALSE(Asks(GXRegionHasIntersection, empty, a));
    EXPECT_TRUE(Asks(GXRegionIsAreaEmpty, empty));
    EXPECT_FALSE(Asks(GXRegionIsAreaEmpty, ring));

    // Moving one leaves the others where they are, though they share their bands.
    const GXRegion copy = Combined(ring, none, GXCombineUnion);
    EXPECT_EQ(GXRegionOffset(ring, 100, -5), GXResultSuccess);
    EXPECT_EQ(RectsOf(ring), " 100,-5,110,-2 100,-2,103,1 106,-2,110,1 100,1,110,5");
    EXPECT_EQ(RectsOf(copy), " 0,0,10,3 0,3,3,6 6,3,10,6 0,6,10,10");
    GXIntRect bound{};
    EXPECT_EQ(GXRegionGetBound(ring, &bound), GXResultSuccess);
    EXPECT_EQ(Text(bound), " 100,-5,110,5");
    for (GXRegion region : {a, copy, empty}) {
        GXObjectRelease(region);
    }

    // The last owner may let go while the rectangles are told.
    struct Context {
        GXRegion region;
        int count;
    } context{ring, 0};
    EXPECT_EQ(GXRegionEnumRects(
                  ring,
                  [](void* c, const GXIntRect*) {
                      auto& told = *static_cast<Context*>(c);
                      if (told.count++ == 0) {
                          GXObjectRelease(told.region);
                      }
                  },
                  &context),
              GXResultSuccess);
    EXPECT_EQ(context.count, 4);
}
