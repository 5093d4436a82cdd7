"""Has a program that knows Apple's addresses only ask the notary service of this machine: in a network and with a list of
hosts of its own, answers under Apple's names on port 443 and passes every request on, its Host header included.

usage: notaryfront.py TOOL-ROOT FOLDER COMMAND...      in a namespace of its own: unshare -Urnm
The folder gets the state of the toolchain, with a password item "item" whose key stands in key.json, too.
"""
import http.client, http.server, json, os, pathlib, socket, ssl, subprocess, sys, threading

root, folder, command = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3:]
names = ["appstoreconnect.apple.com", "api.apple-cloudkit.com", "notary-submissions-local.s3.us-west-2.amazonaws.com",
         "notary-submissions-local.s3-accelerate.amazonaws.com", "notary-artifacts-prod.s3.amazonaws.com"]
environment = {**os.environ, "SEALWRIGHT_TOOLCHAIN_STATE": str(folder / "state"), "SSL_CERT_FILE": str(folder / "ca.pem"),
               "AWS_EC2_METADATA_DISABLED": "true"}
for variable in ("https_proxy", "HTTPS_PROXY", "http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY", "SSL_CERT_DIR"):
    environment.pop(variable, None)


def run(*words, **more):
    return subprocess.run(list(map(str, words)), env=environment, check=True, capture_output=True, text=True, **more).stdout


def make_network():
    run("ip", "link", "set", "lo", "up")
    (folder / "hosts").write_text("127.0.0.1 localhost " + " ".join(names) + "\n")
    run("mount", "--bind", folder / "hosts", "/etc/hosts")


def make_certificates():
    run("openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-keyout", folder / "ca.key",
        "-out", folder / "ca.pem", "-subj", "/CN=Front", "-days", "2")
    run("openssl", "req", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-keyout", folder / "front.key", "-out",
        folder / "front.csr", "-subj", "/CN=" + names[0])
    (folder / "names").write_text("subjectAltName=" + ",".join("DNS:" + name for name in names) + "\n")
    run("openssl", "x509", "-req", "-in", folder / "front.csr", "-CA", folder / "ca.pem", "-CAkey", folder / "ca.key",
        "-CAcreateserial", "-out", folder / "front.pem", "-days", "2", "-extfile", folder / "names")


def start_service():
    run(root / "usr/bin/sealwright-keychain", "make-api-key", "item")
    item = json.loads(run(root / "usr/bin/security", "find-generic-password", "-s", "item", "-w"))
    (folder / "key.json").write_text(json.dumps(item))
    run(root / "usr/bin/sealwright-notaryd", "--control")
    return json.loads((folder / "state/notary/service.json").read_text())


class Front(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def pass_on(self):
        trust = ssl.create_default_context(cafile=service["ca"])
        there = http.client.HTTPSConnection("127.0.0.1", port, context=trust)
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        there.putrequest(self.command, self.path, skip_host=True, skip_accept_encoding=True)
        for name, value in self.headers.items():
            if name.lower() not in ("expect", "connection"):
                there.putheader(name, value)
        there.endheaders(body)
        reply = there.getresponse()
        answer = reply.read().replace(service["api"].removesuffix("/notary/v2").encode(), b"https://" + names[-1].encode())
        self.send_response_only(reply.status)
        self.log_request(reply.status)
        for name, value in reply.getheaders():
            if name.lower() not in ("content-length", "connection"):
                self.send_header(name, value)
        self.send_header("Content-Length", str(len(answer)))
        self.end_headers()
        self.wfile.write(answer)

    do_GET = do_POST = do_PUT = pass_on

    def log_message(self, text, *words):
        print("asked:", self.headers.get("Host"), words[0].split("?")[0], words[1], file=sys.stderr)


make_network()
make_certificates()
service = start_service()
port = int(service["api"].split(":")[2].split("/")[0])
server = http.server.ThreadingHTTPServer(("127.0.0.1", 443), Front)
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain(folder / "front.pem", folder / "front.key")
server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
threading.Thread(target=server.serve_forever, daemon=True).start()
status = subprocess.run(command, env=environment, cwd=folder).returncode
os.kill(service["pid"], 15)
sys.exit(status)
