// catalog() compared with a bare query of the server: the same four lists on a ready connection.
// Starts a private PulseAudio and a private PipeWire, each with six playing streams.

#include "capture/capture_backend.h"
#include "tests/support/sound_server.h"

#include <benchmark/benchmark.h>
#include <pulse/pulseaudio.h>

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <string>

using namespace qn;
using namespace qn::testing;

namespace {

// A client with the plain, single-threaded main loop.
class BareClient {
public:
    BareClient() {
        pa_context_connect(context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
        while (pa_context_get_state(context) != PA_CONTEXT_READY)
            pa_mainloop_iterate(loop, 1, nullptr);
    }
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;
    ~BareClient() {
        pa_context_disconnect(context);
        pa_context_unref(context);
        pa_mainloop_free(loop);
    }

    // Waits for all four answers and ignores the lists.
    void query() {
        awaited = 4;
        const auto server = [](pa_context*, const pa_server_info*, void* self) {
            --static_cast<BareClient*>(self)->awaited;
        };
        pa_operation* operations[] = {
            pa_context_get_server_info(context, server, this),
            pa_context_get_sink_info_list(context, listed<pa_sink_info>, this),
            pa_context_get_client_info_list(context, listed<pa_client_info>, this),
            pa_context_get_sink_input_info_list(context, listed<pa_sink_input_info>, this)};
        while (awaited > 0)
            pa_mainloop_iterate(loop, 1, nullptr);
        for (pa_operation* operation : operations)
            pa_operation_unref(operation);
    }

private:
    template <typename Info> static void listed(pa_context*, const Info*, int end, void* self) {
        static_cast<BareClient*>(self)->awaited -= end != 0 ? 1 : 0;
    }

    pa_mainloop* loop = pa_mainloop_new();
    pa_context* context = pa_context_new(pa_mainloop_get_api(loop), "bare");
    int awaited = 0;
};

// One server with six playing streams and both clients on it.
struct Side {
    explicit Side(SoundServer::Kind kind) : server(kind) {
        for (int i = 0; i < 6; ++i)
            server.play(u"program%1"_s.arg(i), 0.1F);
        while (backend->catalog().applications.size() < 6) {
        }
    }

    SoundServer server;
    std::unique_ptr<CaptureBackend> backend = makeCaptureBackend();
    BareClient bare;
};

void registerBoth(Side& side, const std::string& name) {
    const auto bareQuery = [&side](benchmark::State& state) {
        for ([[maybe_unused]] auto unused : state)
            side.bare.query();
    };
    const auto catalog = [&side](benchmark::State& state) {
        using Clock = std::chrono::steady_clock;
        std::chrono::duration<double, std::milli> longest{0};
        for ([[maybe_unused]] auto unused : state) {
            const Clock::time_point begin = Clock::now();
            benchmark::DoNotOptimize(side.backend->catalog());
            longest = std::max<decltype(longest)>(longest, Clock::now() - begin);
        }
        state.counters["longest_ms"] = longest.count();
    };
    benchmark::RegisterBenchmark(("bareQuery/" + name).c_str(), bareQuery)->UseRealTime();
    benchmark::RegisterBenchmark(("catalog/" + name).c_str(), catalog)->UseRealTime();
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    Side pulseAudio(SoundServer::PulseAudio);
    Side pipeWire(SoundServer::PipeWire);
    registerBoth(pulseAudio, "PulseAudio");
    registerBoth(pipeWire, "PipeWire");
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
