// What the fuzzer's steps act on: the references that the clients hold, the decisions, the bounds.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <atomic>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <orlix/com_ptr.hpp>

#include "fuzz/calls/heap.hpp"
#include "fuzz/choices.hpp"

namespace orlix::fuzz {

class World;
struct Callee;

// One method of the contract or of the system's interfaces.
struct Method {
    const char* interfaceName;
    const char* name;
    const IID* iid;
    void (*call)(World& world, const Callee& callee);
};
std::span<const Method> Methods();

// target is an interface pointer of the method's. Where it is not to be held, the call lets go of it when it begins, if
// others refer to the object, and a client that is called back may let go of the last of those.
struct Callee {
    World& world;
    const Method& method;
    ComPtr<IUnknown>& target;
    bool held;
};

// What has been done since the process started.
struct Tally {
    uint64_t sequences = 0;
    uint64_t calls = 0;
    uint64_t callbacks = 0;       // methods of clients that the library has called
    uint64_t reentrantCalls = 0;  // calls from within those
    uint64_t slowCalls = 0;
    std::vector<uint64_t> callsOf;  // of each of Methods()
};
Tally& TallyOfProcess();

// Where the process is, for whoever reports its death. No allocation, no lock.
struct Place {
    uint64_t sequence = 0;  // its seed
    int step = 0;
    int depth = 0;
    const char* interfaceName = "";
    const char* method = "";
    const char* client = "";
};
extern Place place;
// From how many processor seconds on a call is slow, less those of the calls that clients make within it.
extern double slowSeconds;
// Goes up with every call that begins or ends: who sees it stand still sees a long call.
extern std::atomic<uint64_t> turns;

// A stream's bytes, a file name, ...
using Bytes = std::vector<uint8_t>;

class World {
public:
    World(Choices& choices, bool verbose);
    ~World();  // lets go of everything

    // One random step: a call, a creation, a reference taken or let go of.
    void Step();
    // Ends the sequence and says what the library still holds; empty when it is nothing.
    std::string Close();

    Choices& choices() { return choices_; }
    int depth() const { return depth_; }

    LONG Long();
    double Double();
    const IID& Identifier();
    // The bytes of a stream that an image was saved to last.
    Bytes& savedStream() { return savedStream_; }
    // Names of files in a folder of this process; some do not exist, some cannot.
    std::basic_string<OLECHAR> FileName();
    // Memory for pixels that stays until the sequence ends.
    std::span<uint8_t> Memory(size_t size);
    std::vector<std::span<uint8_t>>& memories() { return memorySpans_; }

    // A reference that the library handed out, which the world takes over.
    void Adopt(const IID& iid, IUnknown* object);
    // A reference of its own to what the library passed to a client.
    void AdoptCopy(const IID& iid, IUnknown* object);
    // An object to hand in as this interface: the library's, a client's, or none.
    ComPtr<IUnknown> Argument(const IID& iid);

    // With --verbose: a line, indented by the depth.
    [[gnu::format(printf, 2, 3)]] void Say(const char* format, ...) const;

    // A client's method was called: may call back.
    void Called(const char* client, const char* method);
    // Around each call of a method of the library.
    class Call {
    public:
        explicit Call(const Callee& callee);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        HRESULT Result(HRESULT result);

    private:
        World& world_;
        const Method& method_;
        Place before_;
        bool calledBefore_;
        double started_;
        double innerBefore_;
        LibraryHeap heap_;
    };

    // Clients count themselves.
    int liveClients = 0;

private:
    struct Reference {
        IID iid;
        IUnknown* object;  // an interface pointer of iid
        bool client;
    };

    void CallMethod();
    void Drop(size_t index);
    void Create();
    void CreateImage();
    void PutRegion();
    void Advise();
    void Share();
    void LookAtError();
    // An object that answers the interface, as that interface: from the pool, or a new one that joins it.
    ComPtr<IUnknown> FromPool(const IID& iid, bool clients);
    ComPtr<IUnknown> NewObject(const IID& iid);

    Choices& choices_;
    bool verbose_;
    // Half of the calls of a sequence are of these few methods, so that the same ones meet each other in many ways.
    std::array<const Method*, 8> focus_ = {};
    int depth_ = 0;
    int budget_ = 600;        // calls of a sequence
    int callbacksLeft_ = 0;   // of a step
    bool inLibrary_ = false;  // Only then clients call back: not from what the fuzzer itself asks of one.
    bool closing_ = false;
    double innerSeconds_ = 0;  // of the calls within the one at work
    int dyingCalls_ = 0;       // calls at work on what may be dying: what they hand out is let go of at once
    std::vector<Reference> pool_;
    std::vector<IUnknown*> dying_;  // objects the last reference to which may be going just now
    Bytes savedStream_;
    std::vector<std::unique_ptr<uint8_t[]>> memory_;
    std::vector<std::span<uint8_t>> memorySpans_;
};

double ProcessorSeconds() noexcept;

}  // namespace orlix::fuzz
