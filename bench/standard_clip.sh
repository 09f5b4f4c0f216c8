# The standard job's input, shared by the whole-process benchmarks: a 10 s 1280x720 30 fps clip with
# stereo sound, made once in the working folder. Sourced, never run.
standard_clip() {
    [[ -f std.mp4 ]] && return 0
    ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=1280x720:rate=30:duration=10 \
        -f lavfi -i sine=frequency=440:sample_rate=48000:duration=10 -ac 2 \
        -c:v libx264 -preset veryfast -b:v 4000k -c:a aac -b:a 160k std.mp4
}
