"""Takes altool's requests as the service and the storage, and computes their signatures anew with botocore, and their
tokens with python3-jwt.

usage: notaryrecompute.py XCRUN FILE... <ITEM     where ITEM is what the password item holds
"""
import datetime, hashlib, http.server, json, os, subprocess, sys, threading, urllib.parse
from unittest import mock

import jwt
from botocore import auth
from botocore.awsrequest import AWSRequest
from botocore.credentials import Credentials
from cryptography.hazmat.primitives import serialization

key = json.load(sys.stdin)
public = serialization.load_pem_private_key(key["private_key"].encode(), None).public_key()
credentials = Credentials("ASIAEXAMPLE", "secret/with+signs=", "token/with+signs==")
place = {"awsAccessKeyId": credentials.access_key, "awsSecretAccessKey": credentials.secret_key,
         "awsSessionToken": credentials.token, "bucket": "some-bucket", "object": "prod/AROA+X Y:ü(*')~/name"}
agreed = {"signatures": 0, "tokens": 0}
problems = []
one_at_a_time = threading.Lock()  # two parts come at once, and botocore's clock is set for one


def recomputed(handler, body):
    """The Authorization header that botocore makes of the same request."""
    kept = {name: value for name, value in handler.headers.items()
            if name.lower() not in ("authorization", "expect", "user-agent", "accept", "content-length")}
    request = AWSRequest(method=handler.command, url="http://" + handler.headers["Host"] + handler.path,
                         headers=kept, data=body)
    request.context["payload_signing_enabled"] = True
    now = datetime.datetime.strptime(handler.headers["x-amz-date"], "%Y%m%dT%H%M%SZ")
    with one_at_a_time, mock.patch("botocore.auth.datetime") as clock:
        clock.datetime.utcnow.return_value = now
        signer = auth.S3SigV4Auth(credentials, "s3", "us-west-2")
        signer.add_auth(request)
    return request.headers["Authorization"]


def parts_of(header):
    return {part.split("=", 1)[0].strip(): part.split("=", 1)[1] for part in header.split(" ", 1)[1].split(",")}


class Service(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *arguments):
        pass

    def answer(self, body=b"", **headers):
        self.send_response(200)
        for name, value in {**headers, "Content-Length": str(len(body))}.items():
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(body)

    def body(self):
        return self.rfile.read(int(self.headers.get("Content-Length") or 0))

    def check_signature(self, body):
        mine, theirs = parts_of(self.headers["Authorization"]), parts_of(recomputed(self, body))
        if mine != theirs:
            problems.append((self.command, self.path, mine, theirs))
        if hashlib.sha256(body).hexdigest() != self.headers["x-amz-content-sha256"]:
            problems.append(("digest", self.path))
        agreed["signatures"] += 1

    def check_token(self):
        token = self.headers["Authorization"].removeprefix("Bearer ")
        claims = jwt.decode(token, public, algorithms=["ES256"], audience="appstoreconnect-v1",
                            issuer=key["issuer_id"])
        assert claims["exp"] - claims["iat"] <= 1200 and jwt.get_unverified_header(token)["kid"] == key["key_id"]
        agreed["tokens"] += 1

    def do_POST(self):
        body = self.body()
        if self.path == "/notary/v2/submissions":
            self.check_token()
            reply = {"data": {"type": "newSubmissions", "id": "0a0a0a0a-0a0a-0a0a-0a0a-0a0a0a0a0a0a",
                              "attributes": place}, "meta": {}}
            return self.answer(json.dumps(reply).encode())
        self.check_signature(body)
        if "uploads" in self.path:
            return self.answer(b"<R><UploadId>an/upload+id=.~</UploadId></R>")
        self.answer(b"<CompleteMultipartUploadResult/>")

    def do_PUT(self):
        body = self.body()
        if len(body) < int(self.headers["Content-Length"]):
            self.close_connection = True  # the client has left this connection and sends the part by the other one
            return
        self.check_signature(body)
        if urllib.parse.unquote(self.path.split("?")[0]) != "/s3/some-bucket/" + place["object"]:
            problems.append(("path", self.path))
        self.answer(ETag='"etag"')


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Service)
threading.Thread(target=server.serve_forever, daemon=True).start()
origin = f"http://127.0.0.1:{server.server_port}"
addresses = {"SEALWRIGHT_NOTARY_API": origin + "/notary/v2",
             "SEALWRIGHT_NOTARY_UPLOAD": origin + "/s3/{bucket}/{object}"}
for file in sys.argv[2:]:
    run = subprocess.run([sys.argv[1], "altool", "--notarize-app", "-f", file, "--primary-bundle-id", "a.b", "-u", "me",
                          "-p", "@keychain:item"], env={**os.environ, **addresses},
                         capture_output=True, text=True)
    if run.returncode != 0:
        problems.append(run.stderr)
told = f"{agreed['signatures']} signatures and {agreed['tokens']} tokens agreed"

# A service that has room for one connection alone gets a big file as well.
lonely = http.server.HTTPServer(("127.0.0.1", 0), Service)
threading.Thread(target=lonely.serve_forever, daemon=True).start()
addresses = {name: address.replace(str(server.server_port), str(lonely.server_port)) for name, address in addresses.items()}
run = subprocess.run([sys.argv[1], "altool", "--notarize-app", "-f", sys.argv[-1], "--primary-bundle-id", "a.b", "-u", "me",
                      "-p", "@keychain:item"], env={**os.environ, **addresses, "SEALWRIGHT_WAIT_SCALE": "0.02"},
                     capture_output=True, text=True)
if run.returncode != 0:
    problems.append(run.stderr)
print(told if not problems else problems)
sys.exit(1 if problems else 0)
