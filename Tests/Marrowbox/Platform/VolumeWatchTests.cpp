#include "AppSupport/EventLoop.h"
#include "AppSupport/PrivateMounts.h"
#include "Marrowbox/Platform/VolumeWatch.h"
#include "Support/ScratchFolder.h"

#include <gmock/gmock.h>
#include <optional>
#include <sys/mount.h>

namespace marrowbox::test {

using testing::ElementsAre;

namespace {

class VolumeWatches : public WithEventLoop {
  protected:
    void SetUp() override {
        if (!enterPrivateMounts())
            GTEST_SKIP() << "This user may not mount.";
        watch.emplace([this] { told.emplace_back("appeared"); }, [this] { told.emplace_back("went away"); });
    }
    bool tells(std::size_t count) const {
        return turnUntil([&] { return told.size() >= count; });
    }

    ScratchFolder folder;
    std::vector<std::string> told;
    std::optional<VolumeWatch> watch;
};

} // namespace

TEST_F(VolumeWatches, tellOfVolumesThatAppearAndGoAway) {
    std::optional<MemoryVolume> volume(folder.path());
    EXPECT_TRUE(tells(1));
    EXPECT_THAT(told, ElementsAre("appeared"));
    volume.reset();
    EXPECT_TRUE(tells(2));
    EXPECT_THAT(told, ElementsAre("appeared", "went away"));
}

TEST_F(VolumeWatches, tellBothOfChangesThatComeTogether) {
    std::optional<MemoryVolume> first(folder.path());
    EXPECT_TRUE(tells(1));
    const ScratchFolder elsewhere;
    const MemoryVolume second(elsewhere.path());
    first.reset();
    EXPECT_TRUE(tells(3));
    EXPECT_THAT(told, ElementsAre("appeared", "went away", "appeared"));
}

TEST_F(VolumeWatches, sayNothingOfAVolumeThatOnlyChanges) {
    const MemoryVolume volume(folder.path());
    EXPECT_TRUE(tells(1));
    ASSERT_EQ(::mount(nullptr, folder.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    std::optional<MemoryVolume> next(folder.path());
    EXPECT_TRUE(tells(2));
    EXPECT_THAT(told, ElementsAre("appeared", "appeared"));
}

TEST_F(VolumeWatches, mayBeEndedByWhatTheyTell) {
    watch.emplace([this] { watch.reset(); }, [] {});
    const MemoryVolume volume(folder.path());
    EXPECT_TRUE(turnUntil([&] { return !watch; }));
}

TEST(VolumeWatch, tellsNothingWithoutAList) {
    const VolumeWatch watch([] { FAIL(); }, [] { FAIL(); }, "/nonexistent/mountinfo");
}

} // namespace marrowbox::test
