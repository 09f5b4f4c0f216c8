#!/usr/bin/env bash
# Converts a short generated clip with every shipped preset through the command-line converter and
# checks each output with ffprobe: codecs (and the hvc1 tag of HEVC in MP4 and MOV), frame size,
# frame rate, sample rate, channels, and that it decodes to the end. Prints "FAIL <ID> <Name>: <reason>"
# per failure, a "SPEED" line per preset of H.265, VP9, AV1 or Opus (the clip's 2 s over the
# converter's wall time, so start-up counts in it) and a summary per codec and picture, then
# "N passed, M failed".
#
# Usage: tools/preset_sweep.sh MORVANE_CLI [--one-per-group] [--match REGEX]
#   --one-per-group  only the first preset of every group (Maker and Keyword)
#   --match REGEX    only the presets whose ID or Name the regular expression finds, ignoring case
set -uo pipefail

usage() {
    echo "usage: $0 MORVANE_CLI [--one-per-group] [--match REGEX]" >&2
    exit 2
}
[[ $# -ge 1 ]] || usage
cli=$(realpath "$1")
shift
one_per_group=0
match=
while [[ $# -gt 0 ]]; do
    case $1 in
    --one-per-group) one_per_group=1 ;;
    --match)
        [[ $# -ge 2 ]] || usage
        match=$2
        shift
        ;;
    *) usage ;;
    esac
    shift
done
repo=$(cd "$(dirname "$0")/.." && pwd)
table="$repo/data/preset.txt"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Keep the converter away from the user's saved settings and output folder.
export HOME="$work/home" XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data"
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$work/out"

clip="$work/clip.mp4"
if ! ffmpeg -v error -nostdin -f lavfi -i testsrc2=size=640x360:rate=25:duration=2 \
        -f lavfi -i sine=frequency=440:duration=2 -c:v libx264 -c:a aac -shortest "$clip"; then
    echo "cannot generate the test clip" >&2
    exit 2
fi

python3 - "$cli" "$table" "$clip" "$work/out" "$one_per_group" "$match" <<'PY'
import json, os, re, statistics, subprocess, sys, time
from collections import Counter, defaultdict
from fractions import Fraction

cli, table, clip, outroot, one_per_group, match = sys.argv[1:7]

def cells(line):
    # Fields are quoted and comma-joined; '#' marks a locked cell and is not part of the value.
    return [c.strip().strip('"').replace('#', '') for c in line.rstrip('\r\n').split('",')]

with open(table, encoding='utf-8-sig') as f:
    lines = [l for l in f if l.strip()]
head = cells(lines[0])
presets = [dict(zip(head, cells(l))) for l in lines[1:]]
presets = [p for p in presets if p.get('Name') and p['Name'] != '[%Custom%]']

# The converter takes an exact name first, ignoring case; a name used twice cannot be reached.
name_count = Counter(p['Name'].lower() for p in presets)

if one_per_group == '1':
    seen, chosen = set(), []
    for p in presets:
        key = (p['Maker'], p['Keyword'])
        if key not in seen:
            seen.add(key)
            chosen.append(p)
    presets = chosen
if match:
    try:
        wanted = re.compile(match, re.IGNORECASE)
    except re.error as e:
        print('bad --match expression: %s' % e, file=sys.stderr)
        sys.exit(2)
    presets = [p for p in presets if wanted.search(p['ID']) or wanted.search(p['Name'])]
    if not presets:
        print('no preset matches %r' % match, file=sys.stderr)
        sys.exit(2)

VIDEO = {
    'H.264': {'h264'}, 'H.265/HEVC': {'hevc'}, 'VP9': {'vp9'}, 'AV1': {'av1'},
    'MPEG4 (DivX/Xvid compatible)': {'mpeg4'}, 'Xvid MPEG4': {'mpeg4'}, 'DivX MPEG4': {'mpeg4'},
    'MPEG-1': {'mpeg1video'}, 'MPEG-2': {'mpeg2video'},
    'Windows Media Video V7': {'wmv1'}, 'Windows Media Video V8': {'wmv2'},
    'VP8': {'vp8'}, 'Theora': {'theora'},
    'H.263 FLV Video': {'flv1'}, 'H.263': {'h263'}, 'Intel ITU H.263': {'h263', 'h263p'},
    'IBM Motion JPEG': {'mjpeg'}, 'Huffman Lossless': {'huffyuv'},
    'Sorenson Video 1': {'svq1'},
    'Microsoft MPEG4 V2': {'msmpeg4v2'}, 'Microsoft MPEG4 V3': {'msmpeg4v3'},
    'RealVideo': {'rv20'}, 'DV - Digital Video Format': {'dvvideo'},
    'Uncompressed': {'gif', 'rawvideo'},
}
AUDIO = {
    'AAC': {'aac'}, 'MP3': {'mp3'}, 'AC3': {'ac3'}, 'Ogg Vorbis': {'vorbis'},
    'WMA': {'wmav2', 'wmav1'}, 'MP2': {'mp2'}, 'FLAC': {'flac'},
    'PCM little-endian': {'pcm_s16le'}, 'PCM big-endian': {'pcm_s16be'},
    'RealAudio 3.0 (dnet)': {'ac3'}, 'IMA ADPCM': {'adpcm_ima_wav', 'adpcm_ima_qt'},
    'Microsoft ADPCM': {'adpcm_ms'}, 'CCITT u-law': {'pcm_mulaw'}, 'CCITT A-law': {'pcm_alaw'},
    'AMR': {'amr_nb'}, 'Opus': {'opus'},
}
# Codecs whose encode speed the sweep reports; the clip lasts 2 s.
TIMED = ('H.265/HEVC', 'VP9', 'AV1', 'Opus')
CLIP_SECONDS = 2.0
CHANNELS = {'Mono': 1, 'Stereo': 2, '5.1 Surround': 6}

def rate(text):
    try:
        r = Fraction(text)
        return float(r) if r else None
    except (ValueError, ZeroDivisionError):
        return None

def check(p, outdir):
    files = [f for f in os.listdir(outdir) if not f.startswith('.')]
    if len(files) != 1:
        return 'expected one output file, found %d' % len(files)
    out = os.path.join(outdir, files[0])
    pr = subprocess.run(['ffprobe', '-v', 'error', '-show_streams', '-show_format', '-of', 'json', out],
                        capture_output=True, text=True)
    if pr.returncode != 0:
        return 'ffprobe: ' + (pr.stderr.strip().splitlines() or ['failed'])[0]
    info = json.loads(pr.stdout)
    streams = info.get('streams', [])
    video = [s for s in streams if s.get('codec_type') == 'video'
             and not s.get('disposition', {}).get('attached_pic')]
    audio = [s for s in streams if s.get('codec_type') == 'audio']
    problems = []
    ext = os.path.splitext(out)[1].lower()
    vlabel, alabel = p['VideoCodec'], p['AudioCodec']

    if vlabel == 'No Video':
        if video:
            problems.append('has a video stream')
    elif not video:
        problems.append('no video stream')
    else:
        v = video[0]
        want = VIDEO.get(vlabel)
        if want is None:
            problems.append('unknown video codec label %r' % vlabel)
        elif v.get('codec_name') not in want:
            problems.append('video codec %s, want %s' % (v.get('codec_name'), '/'.join(sorted(want))))
        elif vlabel == 'H.265/HEVC' and ext in ('.mp4', '.mov', '.m4v') and v.get('codec_tag_string') != 'hvc1':
            # Apple's players refuse HEVC in the MPEG-4 family under any other tag.
            problems.append('HEVC tag %s, want hvc1' % v.get('codec_tag_string'))
        w, h = v.get('width', 0), v.get('height', 0)
        pw, ph = int(p['Width'] or 0), int(p['Height'] or 0)
        if pw and ph:
            if (w, h) != (pw, ph):
                problems.append('frame %dx%d, want %dx%d' % (w, h, pw, ph))
        else:
            # No size given: the source's 640x360, or a size the aspect setting derives from it
            # (kept to the source height, or width, and even).
            ar = {'4:3': 4 / 3, '16:9': 16 / 9}.get(p['AspectRatio'])
            ok = (w, h) == (640, 360) or (
                ar and w % 2 == 0 and h % 2 == 0 and (h == 360 or w == 640) and abs(w / h - ar) < 0.02)
            if not ok:
                problems.append('frame %dx%d, want the source 640x360' % (w, h))
        fps = p['FPS']
        want_fps = 25.0 if fps in ('', 'Original') else rate(fps.split()[0])
        got = [r for r in (rate(v.get('avg_frame_rate', '')), rate(v.get('r_frame_rate', ''))) if r]
        # Fixed-rate formats (GIF) store per-frame delays in 1/100 s, so allow a wider margin there.
        tol = 0.6 if v.get('codec_name') == 'gif' else 0.05
        if want_fps and not any(abs(g - want_fps) <= tol for g in got):
            problems.append('frame rate %s, want %g' % ('/'.join('%.3f' % g for g in got) or '?', want_fps))

    if alabel != 'No Audio':
        if not audio:
            problems.append('no audio stream')
        else:
            a = audio[0]
            want = AUDIO.get(alabel)
            bits = p.get('AudioSize', '').split()[0] if p.get('AudioSize', '') not in ('', '-') else '16'
            if alabel.startswith('PCM') and bits != '16':
                # PCM carries the preset's sample size in the codec name.
                end = 'le' if 'little' in alabel else 'be'
                want = {'pcm_u8', 'pcm_s8'} if bits == '8' else {'pcm_s%s%s' % (bits, end)}
            if want is None:
                problems.append('unknown audio codec label %r' % alabel)
            elif a.get('codec_name') not in want:
                problems.append('audio codec %s, want %s' % (a.get('codec_name'), '/'.join(sorted(want))))
            sr = p['SampleRate'].split()[0] if p['SampleRate'] not in ('', '-') else ''
            if sr and str(a.get('sample_rate')) != sr:
                problems.append('sample rate %s, want %s' % (a.get('sample_rate'), sr))
            ch = CHANNELS.get(p['Channels'])
            if ch and a.get('channels') != ch:
                problems.append('%s channels, want %d' % (a.get('channels'), ch))
    elif audio:
        problems.append('has an audio stream')

    dec = subprocess.run(['ffmpeg', '-nostdin', '-v', 'error', '-i', out, '-f', 'null', '-'],
                         capture_output=True, text=True)
    if dec.returncode != 0 or dec.stderr.strip():
        problems.append('decode: ' + (dec.stderr.strip().splitlines() or ['exit %d' % dec.returncode])[0])

    dur = rate(info.get('format', {}).get('duration', '') or '')
    if dur is None and video:
        # SWF stores no duration; count the decoded frames instead.
        cnt = subprocess.run(['ffprobe', '-v', 'error', '-count_frames', '-select_streams', 'v:0',
                              '-show_entries', 'stream=nb_read_frames,avg_frame_rate', '-of', 'json', out],
                             capture_output=True, text=True)
        try:
            s = json.loads(cnt.stdout)['streams'][0]
            fr = rate(s.get('avg_frame_rate', ''))
            dur = int(s['nb_read_frames']) / fr if fr else None
        except (ValueError, KeyError, IndexError):
            dur = None
    # GIF frame delays are whole hundredths and SWF carries no exact duration, so they get 0.5 s;
    # everything else must end within 0.3 s of the 2 s source.
    tol = 0.5 if ext in ('.gif', '.swf') else 0.3
    if dur is None:
        problems.append('no duration')
    elif abs(dur - 2.0) > tol:
        problems.append('duration %.3f s, want 2 s' % dur)
    return '; '.join(problems)

def timed_codec(p):
    # The codec that sets the pace: the video codec, or the audio codec of an audio-only preset.
    label = p['VideoCodec'] if p['VideoCodec'] != 'No Video' else p['AudioCodec']
    return label if label in TIMED else None

passed = failed = 0
speeds = defaultdict(list)
for n, p in enumerate(presets, 1):
    pid, name = p['ID'], p['Name']
    if name_count[name.lower()] > 1:
        print('FAIL %s %s: the name is used by %d presets' % (pid, name, name_count[name.lower()]), flush=True)
        failed += 1
        continue
    outdir = os.path.join(outroot, str(n))
    os.makedirs(outdir)
    started = time.monotonic()
    run = subprocess.run([cli, '--preset', name, '--overwrite', '--output', outdir, clip],
                         stdin=subprocess.DEVNULL, capture_output=True, text=True)
    elapsed = time.monotonic() - started
    codec = timed_codec(p)
    if codec and run.returncode == 0:
        speed = CLIP_SECONDS / elapsed
        picture = 'audio' if p['VideoCodec'] == 'No Video' else '%sx%s %s' % (p['Width'], p['Height'], p['FPS'])
        speeds[(codec, picture)].append(speed)
        print('SPEED %s %s: %s %s, %.2fx real time (%.1f s)' % (pid, name, codec, picture, speed, elapsed),
              flush=True)
    if run.returncode != 0:
        tail = [l for l in (run.stderr + run.stdout).splitlines() if l.strip()][-1:] or ['no message']
        reason = 'converter exit %d: %s' % (run.returncode, tail[0].strip())
    else:
        reason = check(p, outdir)
    if reason:
        print('FAIL %s %s: %s' % (pid, name, reason), flush=True)
        failed += 1
    else:
        passed += 1
    subprocess.run(['rm', '-rf', outdir])

def pixels(key):
    picture = key[1].split()[0]
    return 0 if picture == 'audio' else int(picture.split('x')[0]) * int(picture.split('x')[1])

for key in sorted(speeds, key=lambda k: (TIMED.index(k[0]), pixels(k), k[1])):
    values = speeds[key]
    print('SPEED %s %s: median %.2fx real time (%d presets, %.2fx to %.2fx)'
          % (key[0], key[1], statistics.median(values), len(values), min(values), max(values)))
print('%d passed, %d failed' % (passed, failed))
sys.exit(0 if failed == 0 else 1)
PY
