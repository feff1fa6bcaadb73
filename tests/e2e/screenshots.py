#!/usr/bin/python3
# Takes the README's pictures of the program on a simulated board under a
# virtual X server, and prints a full save with comments for its excerpt:
#   screenshots.py OUTDIR --launcher zvsim-launch --program zv4280tb --defaults default.hex

import argparse
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from desk import wait_for  # noqa: E402
from scenarios import C_DIVIDER, CHIP_ID, MAP_TITLE, PANEL_TITLE, Bench  # noqa: E402

# A chip set up for channel A at 1575.42 MHz: register -> value.
CHIP = {6: 0x11, 11: 0x08, 16: 0x00, 17: 0x18, 18: 0x09, 19: 0xFC, 20: 0x01, 21: 0x01, 22: 0x00, 23: 0x62,
        25: 0x28, 26: 0x30}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("outdir")
    parser.add_argument("--launcher", required=True)
    parser.add_argument("--program", required=True)
    parser.add_argument("--defaults", required=True)
    args = parser.parse_args()
    for name in ("outdir", "launcher", "program", "defaults"):
        setattr(args, name, os.path.abspath(getattr(args, name)))
    os.makedirs(args.outdir, exist_ok=True)

    with Bench(args) as bench:
        desk = bench.desk
        for reg, value in CHIP.items():
            bench.program.set_register(reg, value)
        bench.read_chip()
        bench.check_shown({CHIP_ID: "4280", C_DIVIDER: "8"})
        desk.focus(bench.program.main)
        desk.screenshot(os.path.join(args.outdir, "main-window.png"), bench.program.main)

        map_wid, _ = bench.open_window("Regmap", MAP_TITLE)
        desk.focus(map_wid)
        desk.screenshot(os.path.join(args.outdir, "map-window.png"), map_wid)

        panel_wid, panel = bench.open_window("Service settings", PANEL_TITLE)
        bench.click(desk.named(panel, "push button", "Search"), panel_wid)
        devices = bench.device_box(panel)
        wait_for("the board in the device box", lambda: devices.name.startswith("2976 "))
        # A full save with comments for the README's excerpt.
        for name in ("Changes only", "Add comments"):
            bench.click(desk.named(panel, "check box", name), panel_wid)
        desk.focus(panel_wid)
        desk.screenshot(os.path.join(args.outdir, "service-panel.png"), panel_wid)
        saved = os.path.join(desk.tmp, "example.hex")
        bench.run("F6", dialog=("Save .hex", saved))
        with open(saved, encoding="utf-8") as f:
            sys.stdout.write(f.read())
    return 0


if __name__ == "__main__":
    sys.exit(main())
