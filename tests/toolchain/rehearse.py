"""Random submissions to the service of this machine, with random trouble and cancels. A seed gives the same run again.

usage: rehearse.py TOOL-ROOT [--runs N] [--seed FIRST]
"""
import argparse, collections, hashlib, json, os, pathlib, random, re, shutil, signal, ssl, subprocess, sys, tempfile, time
import urllib.request

arguments = argparse.ArgumentParser()
arguments.add_argument("root", type=pathlib.Path)
arguments.add_argument("--runs", type=int, default=50)
arguments.add_argument("--seed", type=int, default=1)
options = arguments.parse_args()

identity = "Developer ID Application: Rehearsal (A1B2C3D4E5)"
# Seconds, with waits shortened: every call has 15 for its tries, an upload may be begun twice, and a log be asked for
# three times. A large archive is unpacked and looked at before there is a verdict.
longest = {"upload": 90, "question": 120, "verdict": 300}
calls = ["/submissions$", "/submissions/", "^/s3/", "/logs$", "^/artifacts/", ""]
trouble = [{"fault": "status", "value": code} for code in (500, 502, 503, 504)] + [
    {"fault": "status", "value": {"code": 429, "retryAfter": 2}}, {"fault": "close"}, {"fault": "reset"},
    {"fault": "cut", "value": 20}, {"fault": "stall", "value": 0.3}, {"fault": "drip", "value": 3000},
    {"fault": "delay", "value": 0.2}, {"fault": "slow-read", "value": 4000000}, {"fault": "not-json", "path": "/notary/"},
    {"fault": "s3-error", "value": "SlowDown"}, {"fault": "s3-error", "value": {"code": "InternalError", "late": True}},
    {"fault": "unknown-at-first", "value": 2}, {"fault": "unknown-status", "value": "Pondering"},
    {"fault": "no-log-at-first", "value": 2}, {"fault": "clock", "value": 2000}, {"fault": "missing-field", "value": "status"}]
troubleOfParts = trouble + [{"fault": "complete-error", "value": "InternalError"}, {"fault": "reset", "value": 20_000_000},
                            {"fault": "s3-error", "value": "NoSuchUpload"}, {"fault": "s3-error", "value": "ExpiredToken"},
                            {"fault": "s3-error", "value": "AccessDenied"}]
inParts = 135_000_000  # bytes, more than go in one request


class Rehearsal:
    def __init__(self, folder):
        self.folder = folder
        self.state = folder / "state"
        self.environment = {**os.environ, "SEALWRIGHT_TOOLCHAIN_STATE": str(self.state), "SEALWRIGHT_WAIT_SCALE": "0.02"}
        self.tool("sealwright-keychain", "make-api-key", "item")
        self.tool("sealwright-keychain", "make-identity", "--name", "Rehearsal (A1B2C3D4E5)")
        self.origin = self.tool("sealwright-notaryd", "--control").strip()
        self.trust = ssl.create_default_context(cafile=self.state / "notary/service/ca.pem")
        self.items = self.make_items()
        self.large = self.make_large_item()

    def tool(self, name, *words):
        run = subprocess.run([options.root / "usr/bin" / name, *words], env=self.environment, capture_output=True,
                             text=True, timeout=60)
        if run.returncode != 0:
            raise SystemExit(f"{name} {words}: {run.stdout}{run.stderr}")
        return run.stdout

    def control(self, call, body=b""):
        request = urllib.request.Request(self.origin + "/control/" + call, data=body, method="POST")
        urllib.request.urlopen(request, context=self.trust).read()

    def make_large_item(self):
        app = self.folder / "Large.app"
        shutil.copytree(self.folder / "App.app", app)
        (app / "Contents/Resources/data").write_bytes(random.Random(inParts).randbytes(inParts))
        self.tool("codesign", "-f", "-s", identity, "-o", "runtime", "--timestamp", app)
        archive = self.folder / "large.zip"
        self.tool("ditto", "-c", "-k", "--keepParent", app, archive)
        shutil.rmtree(app)
        return archive

    def make_items(self):
        """Uploads by the verdict that they are to have."""
        app = self.folder / "App.app"
        (app / "Contents/MacOS").mkdir(parents=True)
        shutil.copy(options.root.parents[2] / "samples/Seal Sample.app/Contents/MacOS/Seal Sample",
                    app / "Contents/MacOS/App")
        (app / "Contents/Info.plist").write_text(
            '<?xml version="1.0"?><plist version="1.0"><dict><key>CFBundleExecutable</key><string>App</string>'
            "<key>CFBundleIdentifier</key><string>org.example.app</string>"
            "<key>CFBundlePackageType</key><string>APPL</string></dict></plist>")
        items = []
        for size in (0, 3000, 2_000_000):
            (app / "Contents/Resources").mkdir(exist_ok=True)
            (app / "Contents/Resources/data").write_bytes(random.Random(size).randbytes(size))
            unsigned = self.folder / f"unsigned{size}.zip"
            self.tool("ditto", "-c", "-k", "--keepParent", app, unsigned)
            signed = self.folder / f"signed{size}.zip"
            self.tool("codesign", "-f", "-s", identity, "-o", "runtime", "--timestamp", app)
            self.tool("ditto", "-c", "-k", "--keepParent", app, signed)
            image = self.folder / f"signed{size}.dmg"
            self.tool("hdiutil", "create", image, "-volname", "App", "-srcfolder", app)
            self.tool("codesign", "-s", identity, "--timestamp", image)
            shutil.rmtree(app / "Contents/_CodeSignature")
            self.tool("codesign", "--remove-signature", app / "Contents/MacOS/App")
            items += [(signed, "success"), (image, "success"), (unsigned, "invalid")]
        cut = self.folder / "cut.zip"
        cut.write_bytes(items[0][0].read_bytes()[:-700])
        return items + [(cut, "invalid")]

    def altool(self, words, limit, cancel=None):
        begun = time.monotonic()
        process = subprocess.Popen([options.root / "usr/bin/xcrun", "altool", *map(str, words), "-u", "me", "-p",
                                    "@keychain:item"], env=self.environment, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True)
        try:
            output, error = process.communicate(timeout=cancel if cancel is not None else limit)
        except subprocess.TimeoutExpired:
            process.send_signal(signal.SIGTERM)
            output, error = process.communicate(timeout=5)
            if cancel is None:
                raise AssertionError(f"{words}: not done in {limit} s")
            return None, output, error
        assert time.monotonic() - begun < limit, "too slow"
        return process.returncode, output, error

    def run(self, seed):
        dice = random.Random(seed)
        isLarge = dice.random() < 0.04
        item, verdict = (self.large, "success") if isLarge else dice.choice(self.items)
        digest = hashlib.sha256(item.read_bytes()).hexdigest()
        faults = [{"path": dice.choice(calls), **dice.choice(troubleOfParts if isLarge else trouble),
                   "count": dice.randint(1, 3), "skip": dice.randint(0, 3)} for _ in range(dice.randint(0, 4))]
        cancel = dice.uniform(0, 2 if isLarge else 0.4) if dice.random() < 0.15 else None
        self.control("reset")
        self.control("faults", json.dumps(faults).encode())
        try:
            self.walk(item, verdict, cancel, dice)
        finally:
            left = [path for path in self.folder.rglob(".*.??????") if path.is_file()]
            assert hashlib.sha256(item.read_bytes()).hexdigest() == digest, "the item was changed"
            assert not left, f"left behind: {left}"

    def walk(self, item, verdict, cancel, dice):
        status, output, error = self.altool(["--notarize-app", "-f", item, "--primary-bundle-id", "a.b"],
                                            longest["upload"], cancel)
        if status is None:
            return
        if status != 0:  # only when the trouble at one call was more than four tries; then it is told
            assert "*** Error: " in error and "RequestUUID" not in output, error
            return
        identifier = re.search("RequestUUID = (.*)", output)[1]
        failures, answers = 0, collections.Counter()
        end = time.monotonic() + longest["verdict"]
        while time.monotonic() < end:
            cancel = dice.uniform(0, 0.2) if dice.random() < 0.05 else None
            status, output, error = self.altool(["--notarization-info", identifier], longest["question"], cancel)
            answers[status] += 1
            if status in (None, 239):
                continue
            if status != 0:
                failures += 1
                assert failures <= 3, f"the wait was given up: {error}"
                continue
            found = re.search("(?m)Status: (.+?)$", output)
            assert found, f"status 0 without a status: {output}"
            if found[1] != "in progress":
                assert found[1] == verdict, f"{found[1]} in the place of {verdict}: {output}"
                return
            time.sleep(0.02)
        kept = json.loads((self.state / f"notary/requests/{identifier}.json").read_text())
        raise AssertionError(f"never decided; statuses {dict(answers)}, {kept['phase']} after {kept['polls']} questions")


with tempfile.TemporaryDirectory(prefix="rehearse-") as folder:
    rehearsal = Rehearsal(pathlib.Path(folder))
    failed = []
    for seed in range(options.seed, options.seed + options.runs):
        try:
            rehearsal.run(seed)
        except Exception as problem:  # every seed has its turn
            failed.append(seed)
            print(f"seed {seed}: {problem}", flush=True)
    left = list((rehearsal.state / "notary/uploads").glob("*/put-*"))
    address = json.loads((rehearsal.state / "notary/service/address.json").read_text())
    os.kill(address["pid"], signal.SIGTERM)
    if left:
        failed.append("leftovers")
        print(f"left behind: {left}")
    print(f"{options.runs} runs, {len(failed)} ended wrongly")
    sys.exit(1 if failed else 0)
