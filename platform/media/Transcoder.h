// One conversion task of the encoder engine: demux, decode, filter, hook, encode, mux.
//
// Run_Transcode runs on the calling (worker) thread from start to end and returns how the task ended.
// The hook and the progress function are called on that thread. TaskControl is shared with the
// thread that owns the queue, which pauses, resumes and stops through it.
#pragma once

#include "EncoderHook.h"
#include "EncoderOptions.h"
#include "Output_File.h"

extern "C" {
#include <libavutil/avutil.h>
}

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

struct AVCodec;

namespace morvane {

// Pause and stop requests for running tasks, checked in every loop of a task.
class TaskControl {
public:
    void pause();
    void resume();
    void stop();
    void reset(); // back to running, for the next Start
    bool stopped() const { return m_stopped.load(); }
    // Blocks while paused; false once stopped.
    bool checkpoint();

private:
    std::mutex m_mutex;
    std::condition_variable m_cv;
    bool m_paused = false; // guarded by m_mutex
    std::atomic<bool> m_stopped{false};
};

struct TranscodeJob {
    std::string inputPath;
    InputOptions input;
    std::string outputPath; // the final name; the task writes beside it until it has finished
    EncoderOptions options;
    FileIdentity replaceable; // the file under outputPath that the user agreed to overwrite, if any
};

struct TranscodeResult {
    bool finished = false;
    bool failed = false;
    std::string message;    // with the library's words when failed
    std::string landedPath; // where the finished output is: outputPath, or the next free name
};

// Ends a task whose output runs this far past the input's length: its timestamps are damaged.
constexpr double kRunawayFactor = 2.0;
constexpr std::int64_t kRunawayMarginUs = 60'000'000;

// An encoder by its own name, else by the name of its codec; "libfaac" stands for the native AAC
// encoder. Null with `error` set ("Unknown encoder 'x'") when this build has none.
const AVCodec* Find_Encoder(const std::string& name, AVMediaType type, std::string& error);

// What can be checked before a run: a container for the output's extension and the named encoders.
bool Check_Output(const std::string& outputPath, const EncoderOptions& options, std::string& error);

// What a task reports while it runs; each member may be empty.
struct TranscodeCallbacks {
    int task = -1;              // handed to the hook with each frame
    VideoHook hook;             // each output frame, when the options ask for it
    VideoHookActive hookActive; // when set and false, the frame goes on untouched
    ProgressFn progress;        // every progressIntervalMs, and once at the end
    int progressIntervalMs = 400;
    PreviewFn preview; // every previewIntervalMs while *previewEnabled
    const std::atomic<bool>* previewEnabled = nullptr;
    int previewIntervalMs = 250;
    int previewWidth = 160; // the preview's width; its height follows the display aspect
    int codecThreads = 0;   // threads of each decoder and encoder; 0 lets the library choose per core
};

TranscodeResult Run_Transcode(const TranscodeJob& job, TaskControl& control,
                              const TranscodeCallbacks& callbacks);

} // namespace morvane
