// The resource base without GL: numbering, the never-initialised state and
// the log lines of its end.
#include "ogl/resources/TglResource.h"

#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace Tev::Chart::Ogl {
namespace {

using Debug::Channel;

class CountingResource final : public TglResource {
public:
    explicit CountingResource(int& p_deallocations) : _deallocations(p_deallocations) {}
    ~CountingResource() override { Deallocate(); }

    using TglResource::Deallocate;

private:
    void DoInitialize(Tgl&, OglApi const&) override {}
    void DoDeallocate() override { ++_deallocations; }

    int& _deallocations;
};

TEST(TglResource, NeverInitialisedIsNeitherValidNorDeallocated) {
    int deallocations = 0;
    Debug::CaptureScope capture;
    int id = 0;
    {
        CountingResource resource(deallocations);
        id = resource.TglInstanceId();
        EXPECT_LT(id, 0);
        EXPECT_FALSE(resource.IsValid());
        resource.Deallocate();
        EXPECT_EQ(resource.TglInstanceId(), id);
    }
    EXPECT_EQ(deallocations, 0);
    EXPECT_EQ(capture.Texts(Channel::Debug),
              std::vector<std::string>{"TglResource(" + std::to_string(id) + ") DEAD!"});
    EXPECT_TRUE(::Tev::Test::Assertions(capture).empty());
}

TEST(TglResource, InstanceNumbersCountDownAndStayUniqueAcrossThreads) {
    int deallocations = 0;
    {
        CountingResource first(deallocations);
        CountingResource second(deallocations);
        EXPECT_EQ(second.TglInstanceId(), first.TglInstanceId() - 1);
    }

    Debug::CaptureScope quiet;
    constexpr int PerThread = 500;
    std::vector<std::vector<int>> ids(4);
    std::vector<std::thread> threads;
    for (auto& list : ids)
        threads.emplace_back([&list] {
            int unused = 0;
            for (int i = 0; i < PerThread; ++i) list.push_back(CountingResource(unused).TglInstanceId());
        });
    for (auto& thread : threads) thread.join();
    std::set<int> all;
    for (auto const& list : ids) all.insert(list.begin(), list.end());
    EXPECT_EQ(all.size(), ids.size() * PerThread);
}

}  // namespace
}  // namespace Tev::Chart::Ogl
