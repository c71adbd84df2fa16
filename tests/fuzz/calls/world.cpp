#include "fuzz/calls/world.hpp"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <utility>

#include "fuzz/calls/clients.hpp"
#include "module/class_factory.hpp"
#include "platform/module_lock.hpp"
#include "support/special_numbers.hpp"

#ifdef _WIN32
#include <windows.h>
#else
#include <ctime>
#endif

namespace orlix::fuzz {

Place place;
double slowSeconds = 2;
std::atomic<uint64_t> turns = 0;

namespace {

constexpr size_t kMostReferences = 24;
constexpr int kMostDepth = 4;
constexpr int kMostCallbacks = 24;  // of a step

const CLSID* const kClasses[] = {
    &__uuidof(OrlixImage),   &__uuidof(OrlixShapeRegionOfInterest), &__uuidof(OrlixBitmap), &__uuidof(OrlixHistogram),
    &__uuidof(OrlixPolygon), &__uuidof(OrlixStructuringElement),    &__uuidof(OrlixBuffer), &__uuidof(OrlixVBHelper)};

ComPtr<IUnknown> New(const CLSID& clsid, const IID& iid) {
    ComPtr<IClassFactory> factory;
    ComPtr<IUnknown> object;
    if (FAILED(GetClassFactory(clsid, __uuidof(IClassFactory), factory.OutVoid()))) return {};
    factory->CreateInstance(nullptr, iid, object.OutVoid());
    return object;
}

std::basic_string<OLECHAR> Folder() {
    // The process keeps it: files of earlier sequences are read by later ones.
    static const std::filesystem::path folder = [] {
        const auto made = std::filesystem::temp_directory_path() / "orlix-fuzz-calls";
        std::error_code ignored;
        std::filesystem::create_directories(made, ignored);
        return made;
    }();
    const std::u16string name = folder.u16string();
    return {name.begin(), name.end()};
}

}  // namespace

Tally& TallyOfProcess() {
    static Tally tally = [] {
        Tally fresh;
        fresh.callsOf.resize(Methods().size());
        return fresh;
    }();
    return tally;
}

double ProcessorSeconds() noexcept {
#ifdef _WIN32
    FILETIME created, ended, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user)) return 0;
    const auto seconds = [](const FILETIME& time) {
        return 1e-7 * static_cast<double>(ULONGLONG{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    };
    return seconds(kernel) + seconds(user);
#else
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
#endif
}

// --------------------------------------------------------------------------------------------------------------- calls

World::Call::Call(const Callee& callee)
    : world_(callee.world),
      method_(callee.method),
      before_(place),
      calledBefore_(world_.inLibrary_),
      started_(ProcessorSeconds()),
      innerBefore_(std::exchange(world_.innerSeconds_, 0)),
      heap_(world_.choices_.Chance(8) ? static_cast<int>(world_.choices_.Below(8)) : -1) {
    const auto& [world, method, target, held] = callee;
    place.interfaceName = method.interfaceName;
    place.method = method.name;
    place.depth = world.depth_;
    Tally& tally = TallyOfProcess();
    ++tally.calls;
    if (world.depth_ > 0) ++tally.reentrantCalls;
    ++tally.callsOf[static_cast<size_t>(&method - Methods().data())];
    --world.budget_;
    world.Say("%s::%s on %p%s", method.interfaceName, method.name, static_cast<void*>(target.get()),
              held ? "" : ", not held");
    // The sum of an object of the library tells whether somebody else refers to it.
    if (!held && target->AddRef() >= 3) {
        target->Release();
        target.Detach()->Release();
    } else if (!held) {
        target->Release();
    }
    world.inLibrary_ = true;
    ++turns;
}

HRESULT World::Call::Result(HRESULT result) {
    world_.Say("-> 0x%08X", static_cast<unsigned>(result));
    return result;
}

World::Call::~Call() {
    world_.inLibrary_ = calledBefore_;
    ++turns;
    const double all = ProcessorSeconds() - started_, seconds = all - world_.innerSeconds_;
    world_.innerSeconds_ = innerBefore_ + all;
    place = before_;
    if (seconds < slowSeconds) return;
    ++TallyOfProcess().slowCalls;
    std::printf("slow: %s::%s took %.1f s, seed %llu, step %d\n", method_.interfaceName, method_.name, seconds,
                static_cast<unsigned long long>(place.sequence), place.step);
    std::fflush(stdout);
}

void World::Called(const char* client, const char* method) {
    if (!inLibrary_) return;
    const Temporarily outside(inLibrary_, false);
    const Temporarily here(place, place);
    place.client = client;
    ++TallyOfProcess().callbacks;
    if (depth_ < kMostDepth && callbacksLeft_ > 0 && budget_ > 0 && choices_.Chance(depth_ == 0 ? 72 : 40)) {
        Say("%s::%s calls back", client, method);
        --callbacksLeft_;
        ++depth_;
        for (size_t steps = 1 + choices_.Below(3); steps > 0; --steps) Step();
        --depth_;
    }
}

void World::CallMethod() {
    const Method& method =
        choices_.Chance(140) ? *focus_[choices_.Below(focus_.size())] : Methods()[choices_.Below(Methods().size())];
    ComPtr<IUnknown> target;
    if (!dying_.empty() && choices_.Chance(128)) {
        dying_.back()->QueryInterface(*method.iid, target.OutVoid());
        if (!target) return;
        ++dyingCalls_;
        method.call(*this, {*this, method, target, true});
        target = nullptr;
        --dyingCalls_;
        return;
    }
    target = FromPool(*method.iid, false);
    if (!target) target = NewObject(*method.iid);
    if (target) method.call(*this, {*this, method, target, !choices_.Chance(48)});
}

void World::Say(const char* format, ...) const {
    if (!verbose_) return;
    std::printf("%*s", 2 * depth_, "");
    va_list values;
    va_start(values, format);
    std::vprintf(format, values);
    va_end(values);
    std::printf("\n");
    std::fflush(stdout);
}

// ------------------------------------------------------------------------------------------------------------- objects

World::World(Choices& choices, bool verbose) : choices_(choices), verbose_(verbose) {
    constexpr size_t kNeighbours = 32;  // in the table: of the same and of related interfaces
    const size_t first = choices_.Below(Methods().size());
    for (const Method*& method : focus_) method = &Methods()[(first + choices_.Below(kNeighbours)) % Methods().size()];
    for (int i = 0; i < 2; ++i) CreateImage();
    if (choices_.Chance(128)) PutRegion();
}

World::~World() { Close(); }

std::string World::Close() {
    closing_ = true;
    while (!pool_.empty()) Drop(pool_.size() - 1);
    SetErrorInfo(0, nullptr);
    if (liveClients > 0) return "the library still refers to " + std::to_string(liveClients) + " objects of clients";
    if (ModuleIsLocked()) return "objects of the library are left over";
    return "";
}

void World::Adopt(const IID& iid, IUnknown* object) {
    if (closing_ || dyingCalls_ > 0) {
        object->Release();
        return;
    }
    pool_.push_back({iid, object, IsClient(object)});
    if (pool_.size() > kMostReferences) Drop(choices_.Below(pool_.size()));
}

void World::AdoptCopy(const IID& iid, IUnknown* object) {
    object->AddRef();
    Adopt(iid, object);
}

void World::Drop(size_t index) {
    const Reference gone = pool_[index];
    pool_.erase(pool_.begin() + static_cast<ptrdiff_t>(index));
    if (!gone.client) dying_.push_back(gone.object);
    Say("Release of %p", static_cast<void*>(gone.object));
    {
        const Temporarily inside(inLibrary_, true);
        const LibraryHeap heap(-1);
        gone.object->Release();
    }
    if (!gone.client) dying_.pop_back();
}

ComPtr<IUnknown> World::FromPool(const IID& iid, bool clients) {
    for (int tries = 0; tries < 8 && !pool_.empty(); ++tries) {
        const Reference& reference = pool_[choices_.Below(pool_.size())];
        if (reference.client != clients) continue;
        const ComPtr<IUnknown> object(reference.object);
        ComPtr<IUnknown> found;
        if (SUCCEEDED(object->QueryInterface(iid, found.OutVoid())) && found) return found;
    }
    return {};
}

ComPtr<IUnknown> World::NewObject(const IID& iid) {
    ComPtr<IUnknown> object;
    if (iid == __uuidof(IConnectionPoint) || iid == __uuidof(IEnumConnections) ||
        iid == __uuidof(IEnumConnectionPoints)) {
        const ComPtr<IUnknown> image = FromPool(__uuidof(IConnectionPointContainer), false);
        if (!image) return {};
        auto* const container = static_cast<IConnectionPointContainer*>(image.get());
        ComPtr<IConnectionPoint> point;
        container->FindConnectionPoint(__uuidof(IPictureExEvents), point.Out());
        if (iid == __uuidof(IConnectionPoint)) object = ComPtr<IUnknown>(point.get());
        if (iid == __uuidof(IEnumConnections) && point)
            point->EnumConnections(reinterpret_cast<IEnumConnections**>(object.Out()));
        if (iid == __uuidof(IEnumConnectionPoints))
            container->EnumConnectionPoints(reinterpret_cast<IEnumConnectionPoints**>(object.Out()));
    } else if (iid == __uuidof(IBlobs)) {
        ComPtr<IUnknown> bitmap = choices_.Chance(128) ? FromPool(__uuidof(IBitmapProcess), false) : ComPtr<IUnknown>();
        if (!bitmap) bitmap = New(__uuidof(OrlixBitmap), __uuidof(IBitmapProcess));
        if (!bitmap) return {};
        auto* const process = static_cast<IBitmapProcess*>(bitmap.get());
        process->Create(1 + static_cast<LONG>(choices_.Below(24)), 1 + static_cast<LONG>(choices_.Below(24)), 0);
        for (size_t disks = choices_.Below(4); disks > 0; --disks)
            process->DrawDisk(choices_.Byte() % 24, choices_.Byte() % 24, choices_.Byte() % 9, DT_Xor);
        process->FindBlobs(choices_.Chance(128) ? CT_8 : CT_4, reinterpret_cast<IBlobs**>(object.Out()));
    } else if (iid == __uuidof(IClassFactory)) {
        GetClassFactory(*kClasses[choices_.Below(std::size(kClasses))], iid, object.OutVoid());
    } else {
        const size_t first = choices_.Below(std::size(kClasses));
        for (size_t i = 0; i < std::size(kClasses) && !object; ++i)
            object = New(*kClasses[(first + i) % std::size(kClasses)], iid);
    }
    if (object) AdoptCopy(iid, object.get());
    return object;
}

ComPtr<IUnknown> World::Argument(const IID& iid) {
    if (choices_.Chance(10)) return {};
    const bool client = choices_.Chance(144);
    ComPtr<IUnknown> object;
    if (!client || choices_.Chance(96)) object = FromPool(iid, client);
    if (object) return object;
    if (client) object = MakeClientOf(*this, iid);
    if (!object) return NewObject(iid);
    AdoptCopy(iid, object.get());
    return object;
}

void World::Create() {
    const CLSID& clsid = *kClasses[choices_.Below(std::size(kClasses))];
    if (!choices_.Chance(64)) {
        if (ComPtr<IUnknown> object = New(clsid, __uuidof(IUnknown))) Adopt(__uuidof(IUnknown), object.Detach());
        return;
    }
    const ComPtr<IUnknown> outer = MakeOuter(*this, clsid);
    if (!outer) return;
    // What the pool refers to is the inner object, which sends every question to the outer one.
    ComPtr<IUnknown> inner;
    for (const IID* const iid : {&__uuidof(IImageVPA), &__uuidof(IRegionOfInterest), &__uuidof(IBitmap),
                                 &__uuidof(IHistogram), &__uuidof(IPolygon), &__uuidof(IStructuringElement)})
        if (!inner && SUCCEEDED(outer->QueryInterface(*iid, inner.OutVoid())) && inner) {
            Adopt(*iid, inner.Detach());
            return;
        }
}

void World::CreateImage() {
    ComPtr<IUnknown> image = choices_.Chance(128) ? FromPool(__uuidof(IImageVPAExPlus), false) : ComPtr<IUnknown>();
    if (!image) image = New(__uuidof(OrlixImage), __uuidof(IImageVPAExPlus));
    constexpr LONG kTypes[] = {DT_BYTE, DT_WORD, DT_DWORD, DT_Float};
    const LONG type = kTypes[choices_.Below(std::size(kTypes))];
    const LONG width = 1 + static_cast<LONG>(choices_.Below(24)), height = 1 + static_cast<LONG>(choices_.Below(24));
    const LONG bands = choices_.Chance(48) ? 2 : 1;
    auto* const created = static_cast<IImageVPAExPlus*>(image.get());
    if (!created || created->Create(width, height, bands, type, 1) != S_OK) return;
    void* base = nullptr;
    VPAEntry* table = nullptr;
    if (created->VPA(0, &base, &table) == S_OK)
        for (LONG i = 0; i < 40; ++i) {
            auto* const pixel = static_cast<uint8_t*>(base) +
                                table[choices_.Below(static_cast<size_t>(width))].XEntry * (type & 0x1ff) / 8 +
                                table[choices_.Below(static_cast<size_t>(height))].YEntry * (type & 0x1ff) / 8;
            *pixel = choices_.Byte();
        }
    AdoptCopy(__uuidof(IImageVPAExPlus), image.get());
}

void World::PutRegion() {
    const ComPtr<IUnknown> image = FromPool(__uuidof(IImageProcessBase), false);
    if (!image) return;
    const ComPtr<IUnknown> region = MakeClientOf(*this, __uuidof(IRegionOfInterest));
    const Temporarily inside(inLibrary_, true);
    const LibraryHeap heap(-1);
    static_cast<IImageProcessBase*>(image.get())->put_RegionOfInterest(static_cast<IRegionOfInterest*>(region.get()));
}

void World::Advise() {
    const ComPtr<IUnknown> image = FromPool(__uuidof(IConnectionPointContainer), false);
    if (!image) return;
    ComPtr<IConnectionPoint> point;
    static_cast<IConnectionPointContainer*>(image.get())->FindConnectionPoint(__uuidof(IPictureExEvents), point.Out());
    const ComPtr<IUnknown> sink = MakeClientOf(*this, __uuidof(IPictureExEvents));
    DWORD cookie = 0;
    const Temporarily inside(inLibrary_, true);
    const LibraryHeap heap(-1);
    if (point) point->Advise(sink.get(), &cookie);
}

// Another reference to an object, as one of its interfaces.
void World::Share() {
    if (pool_.empty()) return;
    const ComPtr<IUnknown> object(pool_[choices_.Below(pool_.size())].object);
    const IID& iid = Identifier();
    ComPtr<IUnknown> found;
    if (SUCCEEDED(object->QueryInterface(iid, found.OutVoid())) && found) Adopt(iid, found.Detach());
}

void World::LookAtError() {
    if (choices_.Chance(96)) {
        const ComPtr<IUnknown> info = MakeClientOf(*this, __uuidof(IErrorInfo));
        SetErrorInfo(0, static_cast<IErrorInfo*>(info.get()));
        return;
    }
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Out()) == S_OK && info) Adopt(__uuidof(IErrorInfo), info.Detach());
}

void World::Step() {
    if (depth_ == 0) callbacksLeft_ = kMostCallbacks;
    if (budget_-- <= 0) return;
    const struct {
        int below;
        void (World::*step)();
    } kinds[] = {{168, &World::CallMethod}, {192, &World::PutRegion}, {202, &World::CreateImage}, {214, &World::Create},
                 {222, &World::Advise},     {232, &World::Share},     {236, &World::LookAtError}};
    const int drawn = choices_.Byte();
    for (const auto& [below, step] : kinds)
        if (drawn < below) return (this->*step)();
    if (!pool_.empty()) Drop(choices_.Below(pool_.size()));
}

// -------------------------------------------------------------------------------------------------------------- values

LONG World::Long() {
    const int kind = choices_.Byte();
    if (kind < 176) return kind % 17;
    constexpr LONG kLongs[] = {-1,     -2,    INT_MIN, INT_MAX, INT_MAX - 1, INT_MIN + 1, 255,        256,
                               257,    1000,  65535,   65536,   70000,       0x20,        0x420,      0x210,
                               -200,   -201,  200,     224,     1 << 30,     1 << 24,     46341,      100000000,
                               -65536, 20000, 2000,    0x7FFF,  -100000,     300,         0x10000000, 48};
    return kLongs[static_cast<size_t>(kind) % std::size(kLongs)];
}

double World::Double() {
    const int kind = choices_.Byte();
    if (kind < 96) return kind % 24;
    if (kind < 160) return (kind - 128) * 0.25;
    constexpr double kDoubles[] = {kNaN,  kInfinity, -kInfinity, 1e300,  -1e300,    5e-324,     -0.0,
                                   0.5,   0.25,      0.99,       0x1p31, -0x1p31,   65535,      255,
                                   254.5, 1e9,       3.5e38,     1e-300, 1e-9,      0x1p32,     -1e-9,
                                   20000, 360,       45,         100,    1 - 1e-16, 0x1p31 - 1, 0x1p32 - 1};
    return kDoubles[static_cast<size_t>(kind) % std::size(kDoubles)];
}

const IID& World::Identifier() {
    const size_t kind = choices_.Below(Methods().size() + 8);
    if (kind < Methods().size()) return *Methods()[kind].iid;
    static const IID unknown = {0x12345678, 0, 0, {}};
    return kind % 2 ? __uuidof(IUnknown) : unknown;
}

std::basic_string<OLECHAR> World::FileName() {
    constexpr const OLECHAR* kNames[] = {OLESTR("/a.png"), OLESTR("/b.pgm"),      OLESTR("/c.ppm"), OLESTR("/d.bmp"),
                                         OLESTR("/e.txt"), OLESTR("/none/f.png"), OLESTR(""),       OLESTR("/.")};
    const size_t kind = choices_.Below(std::size(kNames) + 2);
    if (kind < std::size(kNames)) return Folder() + kNames[kind];
    return kind % 2 ? std::basic_string<OLECHAR>(300, OLESTR('x')) : std::basic_string<OLECHAR>();
}

std::span<uint8_t> World::Memory(size_t size) {
    memory_.push_back(std::make_unique<uint8_t[]>(size));
    memorySpans_.emplace_back(memory_.back().get(), size);
    return memorySpans_.back();
}

}  // namespace orlix::fuzz
