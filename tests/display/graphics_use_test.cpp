#include "display/graphics_use.hpp"

#include "support/testing.hpp"

#include <atomic>
#include <stdexcept>
#include <thread>

namespace orlix {
namespace {

// Notes every step; each may be told to fail or to throw.
struct Journal {
    std::string steps;
    std::atomic<int> running{0}, starts{0};
    bool loads = true, hasEntryPoints = true, throws = false;
    int status = 0;
    uintptr_t token = 42;
};

class FakeLibrary final : public GraphicsLibrary {
public:
    explicit FakeLibrary(Journal& journal) : journal_(journal) {}
    bool Load() override {
        journal_.steps += "load ";
        return journal_.loads;
    }
    bool FindEntryPoints() override { return journal_.hasEntryPoints; }
    int Start(uintptr_t& token) override {
        journal_.steps += "start ";
        if (journal_.throws) throw std::runtime_error("inside the library");
        token = journal_.token;
        ++journal_.running;
        ++journal_.starts;
        return journal_.status;
    }
    void ShutDown(uintptr_t token) override {
        journal_.steps += token == 42 ? "stop " : "stop of another ";
        --journal_.running;
    }
    void Unload() noexcept override { journal_.steps += "unload "; }

private:
    Journal& journal_;
};

TEST(GraphicsUse, FirstUserStartsAndLastOneShutsDown) {
    Journal journal;
    GraphicsUse use(std::make_unique<FakeLibrary>(journal));
    use.Begin();
    EXPECT_EQ("load start ", journal.steps);
    use.Begin();
    use.End();
    EXPECT_EQ("load start ", journal.steps);
    use.End();
    EXPECT_EQ("load start stop unload ", journal.steps);
    use.Begin();
    use.End();
    EXPECT_EQ("load start stop unload load start stop unload ", journal.steps);
}

TEST(GraphicsUse, WhatDoesNotStartIsNotShutDownAndTriedAgainByTheNextFirstUser) {
    const struct {
        const char* name;
        void (*spoil)(Journal&);
        const char* steps;
    } cases[] = {
        {"missing", [](Journal& j) { j.loads = false; }, "load "},
        {"no entry points", [](Journal& j) { j.hasEntryPoints = false; }, "load unload "},
        {"start-up fails", [](Journal& j) { j.status = 2; }, "load start unload "},
        {"no token", [](Journal& j) { j.token = 0; }, "load start unload "},
        {"start-up throws", [](Journal& j) { j.throws = true; }, "load start unload "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Journal journal;
        c.spoil(journal);
        GraphicsUse use(std::make_unique<FakeLibrary>(journal));
        use.Begin();
        use.Begin();
        use.End();
        use.End();
        EXPECT_EQ(c.steps, journal.steps);
        use.Begin();
        use.End();
        EXPECT_EQ(std::string(c.steps) + c.steps, journal.steps);
    }
}

TEST(GraphicsUse, SixteenThreadsNeverFindItStoppedNorRunningTwice) {
    Journal journal;
    GraphicsUse use(std::make_unique<FakeLibrary>(journal));
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 16; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                use.Begin();
                if (journal.running != 1) ++wrong;
                if ((i + t) % 3 == 0) std::this_thread::yield();
                use.End();
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, wrong);
    EXPECT_EQ(0, journal.running);
    EXPECT_GE(journal.starts, 1);
}

}  // namespace
}  // namespace orlix
