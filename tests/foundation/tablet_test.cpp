#include <gtest/gtest.h>

#include <foundation/tablet.h>

TEST(RecordingTablet, RecordsSegmentsInOrder) {
    xcRecordingTablet t;
    t.drawLineSeg(xcPair<double>(0, 1), xcPair<double>(2, 3), xcColor(9, 8, 7), xcUITablet::Layers(2));
    t.drawLineSeg(xcPair<double>(4, 4), xcPair<double>(4, 4), xcColor(), xcUITablet::Layers());
    ASSERT_EQ(t.segments().size(), 2u);
    EXPECT_EQ(t.segments()[0].p1, xcPair<double>(0, 1));
    EXPECT_EQ(t.segments()[0].p2, xcPair<double>(2, 3));
    EXPECT_EQ(t.segments()[0].color, xcColor(9, 8, 7));
    EXPECT_EQ(t.segments()[0].layers.mask(), 2u);
    EXPECT_EQ(t.segments()[1].p1, xcPair<double>(4, 4));
    EXPECT_EQ(t.segments()[1].layers.mask(), 1u);
}

TEST(RecordingTablet, ClearForgetsSegments) {
    xcRecordingTablet t;
    t.drawLineSeg(xcPair<double>(0, 0), xcPair<double>(1, 1), xcColor(), xcUITablet::Layers());
    t.clear();
    EXPECT_TRUE(t.segments().empty());
}

TEST(RecordingTablet, UsableThroughTheAbstractTablet) {
    xcRecordingTablet recorder;
    xcUITablet& t = recorder;
    t.drawLineSeg(xcPair<double>(1, 2), xcPair<double>(3, 4), xcColor(), xcUITablet::Layers());
    EXPECT_EQ(recorder.segments().size(), 1u);
}
