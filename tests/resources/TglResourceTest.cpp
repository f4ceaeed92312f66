// The resource base: numbering, the four states and their log lines, and
// the facade's end arriving before the resource's.
#include "ogl/resources/TglResource.h"

#include "tgl/FakeTgl.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace Tev::Chart::Ogl {
namespace {

using Debug::Channel;

std::string Line(int p_id, char const* p_what) { return "TglResource(" + std::to_string(p_id) + ") " + p_what; }

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
        EXPECT_TRUE(id < 0 && !resource.IsValid());
        resource.Deallocate();
        EXPECT_EQ(resource.TglInstanceId(), id);
    }
    EXPECT_EQ(deallocations, 0);
    EXPECT_EQ(capture.Texts(Channel::Debug), std::vector<std::string>{Line(id, "DEAD!")});
    EXPECT_TRUE(::Tev::Test::Assertions(capture).empty());
}

TEST(TglResource, InstanceNumbersCountDownAndStayUniqueAcrossThreads) {
    Debug::CaptureScope quiet;
    int deallocations = 0;
    {
        CountingResource first(deallocations);
        CountingResource second(deallocations);
        EXPECT_EQ(second.TglInstanceId(), first.TglInstanceId() - 1);
    }

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

class NamedObject final : public TglObject {
public:
    NamedObject(OglApi const& p_api, unsigned p_name) : TglObject(p_api, p_name) {}
    ~NamedObject() override { Deallocate(); }

private:
    void DoDeallocate() override {}
};

class TglResourceLife : public ::testing::Test {
protected:
    TglResourceLife() { _facade.Build(); }
    void Initialize(TglResource& p_resource, Utility::Lifetime const& p_lifetime) {
        Internal::ResourceAccess::Initialize(p_resource, *_facade.tgl, _facade->Api(), p_lifetime);
    }

    ::Tev::Test::FakeTgl _facade;
    Utility::Lifetime _lifetime;
};

TEST_F(TglResourceLife, DeallocatesOnceAndCanBeMadeLiveAgain) {
    int deallocations = 0;
    CountingResource resource(deallocations);
    int const constructed = resource.TglInstanceId();
    Initialize(resource, _lifetime);
    EXPECT_TRUE(resource.TglInstanceId() == -constructed && resource.IsValid());

    Debug::CaptureScope capture;
    resource.Deallocate();
    resource.Deallocate();
    EXPECT_TRUE(deallocations == 1 && resource.TglInstanceId() == constructed && !resource.IsValid());
    EXPECT_EQ(capture.Texts(Channel::Debug), std::vector<std::string>{Line(-constructed, "Deallocated!\n")});

    Initialize(resource, _lifetime);
    EXPECT_TRUE(resource.IsValid());
    EXPECT_TRUE(::Tev::Test::Assertions(capture).empty());
}

TEST_F(TglResourceLife, FacadeEndingFirstDeallocatesOnceAndTheLaterDestructionOnlyDies) {
    int deallocations = 0;
    Debug::CaptureScope capture;
    int id = 0;
    {
        CountingResource resource(deallocations);
        Utility::Lifetime facadeLifetime;
        Initialize(resource, facadeLifetime);
        id = resource.TglInstanceId();
        facadeLifetime.Expire();
        EXPECT_TRUE(deallocations == 1 && !resource.IsValid() && resource.TglInstanceId() == -id);
    }
    EXPECT_EQ(deallocations, 1);
    EXPECT_EQ(capture.Texts(Channel::Debug),
              (std::vector<std::string>{Line(id, "Expired!"), Line(id, "Deallocated!\n"), Line(-id, "DEAD!")}));
}

TEST_F(TglResourceLife, ResourceEndingFirstStopsWatchingTheFacade) {
    int deallocations = 0;
    Utility::Lifetime facadeLifetime;
    {
        CountingResource resource(deallocations);
        Initialize(resource, facadeLifetime);
    }
    Debug::CaptureScope capture;
    facadeLifetime.Expire();
    EXPECT_EQ(deallocations, 1);
    EXPECT_TRUE(capture.Texts(Channel::Debug).empty());
}

TEST_F(TglResourceLife, ObjectNeedsAGlNameToBeValid) {
    NamedObject unnamed(_facade->Api(), 0);
    NamedObject named(_facade->Api(), 7);
    Initialize(unnamed, _lifetime);
    Initialize(named, _lifetime);
    EXPECT_TRUE(unnamed.TglInstanceId() > 0 && !unnamed.IsValid() && named.IsValid());
    _lifetime.Expire();
    EXPECT_FALSE(named.IsValid());
}

}  // namespace
}  // namespace Tev::Chart::Ogl
