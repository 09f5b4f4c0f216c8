#!/usr/bin/env python3
"""Writes docs/PRESETS.md, the list of shipped output groups and presets, from data/preset.txt.

Run it after editing the shipped catalogue: python3 scripts/presets_doc.py
"""
import pathlib

ROOT = pathlib.Path(__file__).resolve().parent.parent
PANELS = [("VideoFormat", "Video Formats"), (None, "Devices"), ("AudioFormat", "Audio Formats"),
          ("WebFormat", "Web Formats")]
MAKERS = ["Apple", "Samsung", "BlackBerry", "HTC", "Nokia", "Google", "LG", "Sony", "Microsoft",
          "Motorola", "Archos", "Game", "Others"]


def rows():
    lines = (ROOT / "data" / "preset.txt").read_text(encoding="utf-8").splitlines()
    header = [f.strip('"') for f in lines[0].split('",')]
    for line in lines[1:]:
        if line:
            yield dict(zip(header, [f.replace('"', "") for f in line.split('",')]))


def describe(row):
    clean = {k: v.replace("#", "") for k, v in row.items()}
    parts = []
    if clean["VideoCodec"] != "No Video":
        size = "source size" if clean["Width"] == "0" else f'{clean["Width"]} x {clean["Height"]}'
        rate = "source rate" if clean["FPS"] == "Original" else clean["FPS"]
        parts.append(f'{clean["VideoCodec"]}, {size}, {rate}')
    if clean["AudioCodec"] != "No Audio":
        parts.append(f'{clean["AudioCodec"]} {clean["AudioBitrate"]} {clean["SampleRate"]} {clean["Channels"]}')
    return f'.{clean["FileExtention"]}: ' + "; ".join(parts)


def main():
    presets = [r for r in rows() if r["Name"] != "[%Custom%]"]
    out = ["# Output presets", "",
           "The groups and presets that Morvane ships, panel by panel, in the order the browser shows them.",
           "Every group also has a \"[Custom]\" entry to start from. Made by `scripts/presets_doc.py`.", ""]
    for maker, title in PANELS:
        out += [f"## {title}", ""]
        makers = MAKERS if maker is None else [maker]
        for each in makers:
            chosen = [r for r in presets if r["Maker"].strip() == each]
            if maker is None:
                out += [f"### {each}", ""]
            groups = []
            for r in chosen:
                if r["Keyword"] not in groups:
                    groups.append(r["Keyword"])
            for group in groups:
                out.append(f"- **{group}**")
                out += [f'  - {r["Name"]} ({describe(r)})' for r in chosen if r["Keyword"] == group]
            out.append("")
    (ROOT / "docs" / "PRESETS.md").write_text("\n".join(out), encoding="utf-8")


if __name__ == "__main__":
    main()
