#!/usr/bin/python3
"""The report as a person sees it: zel report on the shipped sample, opened in
headless Chromium. The test takes a screenshot and checks that the page ran
without script or console errors, that its own figure check ran and found
every figure drawn with data, that the plan zooms and resets, and that the
screenshot is not a blank page.

Usage: check_report.py ZEL_PROGRAM SOURCE_DIR WORK_DIR
Exit status: 0 passed, 1 failed, 77 skipped (Chromium is not installed).
"""
import html.parser
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib

SKIPPED = 77
# Every figure the sample's report with points holds. It has no cant, so no
# cant diagram.
EXPECTED_FIGURES = ["plan", "curvature", "profile", "offsets", "heights"]
WINDOW = (1100, 2400)  # pixels of the screenshot
# Longest a Chromium run may take (seconds); the page renders in about one.
CHROMIUM_TIMEOUT = 90
# Part of the screenshot that must differ from the white page (figures,
# text, points): a page that failed to draw stays almost white.
MIN_INK_FRACTION = 0.03
CHROMIUM_FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                  "--disable-background-networking", "--disable-component-update", "--disable-sync",
                  "--hide-scrollbars", "--enable-logging=stderr", "--v=0"]


def find_chromium():
    for name in (os.environ.get("CHROMIUM", ""), "chromium", "chromium-browser"):
        if name and shutil.which(name):
            return shutil.which(name)
    return None


def run_chromium(chromium, url, extra, stdout_path=None):
    profile = tempfile.mkdtemp(prefix="zel_browser_profile_")
    try:
        cmd = [chromium] + CHROMIUM_FLAGS + ["--user-data-dir=" + profile] + extra + [url]
        result = subprocess.run(cmd, capture_output=True, text=True, timeout=CHROMIUM_TIMEOUT)
        return result
    finally:
        shutil.rmtree(profile, ignore_errors=True)


class Dom(html.parser.HTMLParser):
    """The body's attributes and every figure's attributes."""

    def __init__(self):
        super().__init__()
        self.body = None
        self.figures = {}
        self.errors_text = ""
        self._in_errors = False

    def handle_starttag(self, tag, attrs):
        a = dict(attrs)
        if tag == "body":
            self.body = a
        if tag == "svg" and "data-figure" in a:
            self.figures[a["data-figure"]] = a
        self._in_errors = tag == "pre" and a.get("id") == "report-errors"

    def handle_endtag(self, tag):
        if tag == "pre":
            self._in_errors = False

    def handle_data(self, data):
        if self._in_errors:
            self.errors_text += data


def png_ink_fraction(path):
    """Fraction of pixels of an 8-bit RGB or RGBA PNG that are not near white."""
    with open(path, "rb") as f:
        data = f.read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError("not a PNG file")
    pos = 8
    idat = b""
    width = height = bpp = 0
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        pos += 12 + length
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", body[:10])
            if depth != 8 or colour not in (2, 6):
                raise ValueError("unexpected PNG format: depth %d colour type %d" % (depth, colour))
            bpp = 3 if colour == 2 else 4
        elif kind == b"IDAT":
            idat += body
    raw = zlib.decompress(idat)
    stride = width * bpp
    previous = bytearray(stride)
    ink = 0
    for row in range(height):
        start = row * (stride + 1)
        kind = raw[start]
        line = bytearray(raw[start + 1:start + 1 + stride])
        for i in range(stride):
            left = line[i - bpp] if i >= bpp else 0
            up = previous[i]
            if kind == 1:
                line[i] = (line[i] + left) & 0xFF
            elif kind == 2:
                line[i] = (line[i] + up) & 0xFF
            elif kind == 3:
                line[i] = (line[i] + ((left + up) >> 1)) & 0xFF
            elif kind == 4:
                corner = previous[i - bpp] if i >= bpp else 0
                p = left + up - corner
                pa, pb, pc = abs(p - left), abs(p - up), abs(p - corner)
                pred = left if pa <= pb and pa <= pc else (up if pb <= pc else corner)
                line[i] = (line[i] + pred) & 0xFF
        for i in range(0, stride, bpp):
            if min(line[i], line[i + 1], line[i + 2]) < 235:
                ink += 1
        previous = line
    return width, height, ink / float(width * height)


# Turns the wheel once towards the screen over the middle of the plan, then
# double-clicks it: the page's zoom must shrink the view to 0.8 and restore it.
ZOOM_PROBE = """<script>
(function () {
  var svg = document.querySelector('svg[data-figure="plan"]');
  var r = svg.getBoundingClientRect();
  document.body.setAttribute('data-zoom-before', svg.getAttribute('viewBox'));
  svg.dispatchEvent(new WheelEvent('wheel', {deltaY: -100, clientX: r.left + r.width / 2,
                                             clientY: r.top + r.height / 2, bubbles: true, cancelable: true}));
  document.body.setAttribute('data-zoom-after', svg.getAttribute('viewBox'));
  document.body.setAttribute('data-zoom-radius', svg.querySelector('circle').getAttribute('r'));
  svg.dispatchEvent(new MouseEvent('dblclick', {bubbles: true}));
  document.body.setAttribute('data-zoom-reset', svg.getAttribute('viewBox'));
})();
</script>
"""
ZOOM_STEP = 0.8


def check_zoom(chromium, report, work):
    """The plan zooms with the wheel about the pointer and a double click shows it whole."""
    with open(report, encoding="utf-8") as f:
        page = f.read()
    probe = os.path.join(work, "report_zoom.html")
    with open(probe, "w", encoding="utf-8") as f:
        f.write(page.replace("</body>", ZOOM_PROBE + "</body>"))
    dumped = run_chromium(chromium, "file://" + os.path.abspath(probe), ["--dump-dom"])
    dom = Dom()
    dom.feed(dumped.stdout)
    body = dom.body or {}
    try:
        before = [float(v) for v in body["data-zoom-before"].split()]
        after = [float(v) for v in body["data-zoom-after"].split()]
        reset = [float(v) for v in body["data-zoom-reset"].split()]
    except (KeyError, ValueError):
        return ["the zoom probe did not run: " + dumped.stderr[-1000:]]
    failures = []
    if abs(after[2] - ZOOM_STEP * before[2]) > 1e-6 or abs(after[3] - ZOOM_STEP * before[3]) > 1e-6:
        failures.append("one wheel step did not zoom the plan to %.1f: %s -> %s" % (ZOOM_STEP, before, after))
    # About the middle: the centre of the view stays where it was.
    for i in (0, 1):
        if abs((after[i] + after[i + 2] / 2) - (before[i] + before[i + 2] / 2)) > 1.0:
            failures.append("the zoom moved the middle of the plan: %s -> %s" % (before, after))
            break
    if reset != before:
        failures.append("a double click did not show the whole plan again: %s" % reset)
    if body.get("data-report-errors") != "0":
        failures.append("errors while zooming: " + dom.errors_text)
    print("zoom: view %s -> %s, reset %s" % (before, after, reset))
    return failures


def main():
    if len(sys.argv) != 4:
        print(__doc__)
        return 2
    zel, source, work = sys.argv[1:]
    chromium = find_chromium()
    if chromium is None:
        print("SKIPPED: Chromium is not installed (Debian package chromium; scripts/setup.sh installs it), "
              "so the report cannot be checked in a browser")
        return SKIPPED
    os.makedirs(work, exist_ok=True)
    report = os.path.join(work, "report.html")
    screenshot = os.path.join(work, "report.png")
    for stale in (report, screenshot):
        if os.path.exists(stale):
            os.remove(stale)
    sample = os.path.join(source, "data", "sample")
    made = subprocess.run([zel, "report", os.path.join(sample, "alignment.xml"), os.path.join(sample, "points.csv"),
                           "--tolerance", "0.02", "-o", report], capture_output=True, text=True, timeout=120)
    if made.returncode != 0:
        print("zel report failed (%d): %s" % (made.returncode, made.stderr))
        return 1
    url = "file://" + os.path.abspath(report)
    failures = []

    dumped = run_chromium(chromium, url, ["--dump-dom"])
    dom = Dom()
    dom.feed(dumped.stdout)
    console = [l for l in dumped.stderr.splitlines() if ":CONSOLE" in l and "report.html" in l]
    for line in console:
        failures.append("console message from the page: " + line)
    if dom.body is None:
        failures.append("Chromium returned no page body; its output: " + dumped.stderr[-2000:])
    else:
        if dom.body.get("data-report-checked") != "yes":
            failures.append("the page's figure check did not run")
        if dom.body.get("data-report-errors") != "0":
            failures.append("script or console errors in the page: %s\n%s" %
                            (dom.body.get("data-report-errors"), dom.errors_text))
        ok = (dom.body.get("data-figures-ok") or "").split()
        bad = (dom.body.get("data-figures-bad") or "").split()
        if bad:
            failures.append("figures drawn empty or of no size: " + " ".join(bad))
        for name in EXPECTED_FIGURES:
            if name not in dom.figures:
                failures.append("figure missing: " + name)
            elif name not in ok:
                failures.append("figure not found drawn by the page: " + name)
            elif int(dom.figures[name].get("data-marks-drawn", "0")) < 1:
                failures.append("figure without drawn data: " + name)
        print("figures drawn: " + ", ".join("%s (%s marks)" % (n, dom.figures[n].get("data-marks-drawn"))
                                            for n in ok if n in dom.figures))

    failures += check_zoom(chromium, report, work)

    shot = run_chromium(chromium, url, ["--screenshot=" + screenshot, "--window-size=%d,%d" % WINDOW])
    if not os.path.exists(screenshot):
        failures.append("no screenshot was written; Chromium said: " + shot.stderr[-2000:])
    else:
        width, height, ink = png_ink_fraction(screenshot)
        print("screenshot %s: %dx%d, %.1f %% ink" % (screenshot, width, height, 100.0 * ink))
        if (width, height) != WINDOW:
            failures.append("screenshot of %dx%d, expected %dx%d" % (width, height, WINDOW[0], WINDOW[1]))
        if ink < MIN_INK_FRACTION:
            failures.append("the screenshot is almost blank: %.2f %% ink" % (100.0 * ink))

    for f in failures:
        print("FAILED: " + f)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
