"""Programs that others wrote talk to the notary service: AWS's client uploads, python3-jwt makes the tokens.

usage: notarypartners.py SERVICE.JSON <ITEM     where ITEM is what the password item holds
"""
import base64, hashlib, http.server, json, os, queue, socket, ssl, sys, tempfile, threading, time, urllib.error, urllib.request, warnings

import boto3
import jwt
from botocore.config import Config
from botocore.exceptions import ClientError

warnings.simplefilter("ignore")  # the bucket's host stands in no certificate
service = json.load(open(sys.argv[1]))
key = json.load(sys.stdin)
trust = ssl.create_default_context(cafile=service["ca"])
origin = service["api"].removesuffix("/notary/v2")


def token(headers={}, **changes):
    now = int(time.time())
    claims = {"iss": key["issuer_id"], "iat": now, "exp": now + 600, "aud": "appstoreconnect-v1"}
    claims.update(changes)
    signing = changes.pop("signing_key", key["private_key"])
    claims.pop("signing_key", None)
    return jwt.encode(claims, signing, algorithm="ES256", headers={"kid": key["key_id"], **headers})


def call(path, body=None, bearer=None, scheme="Bearer", type="application/json"):
    request = urllib.request.Request(service["api"] + path, method="POST" if body else "GET",
                                     data=json.dumps(body).encode() if body else None,
                                     headers={"Authorization": scheme + " " + (bearer or token()), "Content-Type": type})
    try:
        with urllib.request.urlopen(request, context=trust) as reply:
            return reply.status, json.load(reply)
    except urllib.error.HTTPError as error:
        return error.code, None


def tokens():
    assert call("/submissions")[0] in (200, 404)
    now = int(time.time())
    for wrong in ({"aud": "somebody-else"}, {"exp": now - 300, "iat": now - 900}, {"exp": now + 1500},
                  {"iss": "00000000-0000-0000-0000-000000000000"}):
        assert call("/submissions", bearer=token(**wrong))[0] == 401, wrong
    from cryptography.hazmat.primitives.asymmetric import ec
    other = ec.generate_private_key(ec.SECP256R1())
    assert call("/submissions", bearer=token(signing_key=other))[0] == 401
    assert call("/submissions", bearer=token()[:-6] + "AAAAAA")[0] == 401
    assert call("/submissions", bearer=token() + "==")[0] == 401  # base64url has no padding in a token
    assert call("/submissions", bearer=token(headers={"crit": ["b64"], "b64": True}))[0] == 401
    now = time.time()
    assert call("/submissions", bearer=token(iat=now - 10.5, exp=now - 0.25 - 10.5))[0] == 401
    assert call("/submissions", bearer=token(iat=now - 0.5, exp=now + 600.25))[0] in (200, 404)
    assert call("/submissions", scheme="bearer")[0] in (200, 404)


def mediaTypes():
    form = {"submissionName": "a.zip", "sha256": "0" * 64}
    for type in ("application/json", "Application/JSON", "application/json; charset=utf-8"):
        assert call("/submissions", form, type=type)[0] == 200, type
    for type in ("application/jsonx", "text/plain", "application/x-www-form-urlencoded"):
        assert call("/submissions", form, type=type)[0] == 400, type


def protocols():
    """No older one than TLS 1.2."""
    host, port = origin.removeprefix("https://").split(":")
    for version, is_good in ((ssl.TLSVersion.TLSv1, False), (ssl.TLSVersion.TLSv1_1, False), (ssl.TLSVersion.TLSv1_2, True),
                             (ssl.TLSVersion.TLSv1_3, True)):
        context = ssl.create_default_context(cafile=service["ca"])
        context.set_ciphers("ALL:@SECLEVEL=0")
        context.minimum_version = context.maximum_version = version
        try:
            context.wrap_socket(socket.create_connection((host, int(port))), server_hostname=host).close()
            assert is_good, version
        except (ssl.SSLError, ConnectionError):
            assert not is_good, version


def begin(data, name):
    status, reply = call("/submissions", {"submissionName": name, "sha256": hashlib.sha256(data).hexdigest()})
    assert status == 200, status
    return reply["data"]["id"], reply["data"]["attributes"]


def storage(place, **changes):
    place = {**place, **changes}
    return boto3.client("s3", endpoint_url=origin + "/s3", region_name="us-west-2", verify=service["ca"],
                        aws_access_key_id=place["awsAccessKeyId"],
                        aws_secret_access_key=place["awsSecretAccessKey"],
                        aws_session_token=place["awsSessionToken"],
                        config=Config(s3={"addressing_style": "path"}, retries={"max_attempts": 1}))


def uploads():
    data = b"PK\3\4" + os.urandom(20000)
    identifier, place = begin(data, "by boto3.zip")
    for changes in ({"awsSecretAccessKey": "wrong"}, {"awsSessionToken": "wrong"}, {"awsAccessKeyId": "ASIAWRONG"}):
        try:
            storage(place, **changes).put_object(Bucket=place["bucket"], Key=place["object"], Body=data)
            raise SystemExit(f"accepted with {changes}")
        except ClientError as error:
            assert error.response["ResponseMetadata"]["HTTPStatusCode"] in (400, 403), error
    for _ in range(2):  # the same bytes may be put again
        storage(place).put_object(Bucket=place["bucket"], Key=place["object"], Body=data)
    assert call(f"/submissions/{identifier}")[1]["data"]["attributes"]["status"] == "In Progress"


def whatIsNoPut():
    """What asks the storage for anything else changes nothing of the object."""
    data = b"PK\3\4" + os.urandom(3000)
    identifier, place = begin(data, "alone.zip")
    client = storage(place)
    where = {"Bucket": place["bucket"], "Key": place["object"]}
    client.put_object(**where, Body=data)
    for ask in (lambda: client.put_object_tagging(**where, Tagging={"TagSet": []}),
                lambda: client.put_object_acl(**where, ACL="private"),
                lambda: client.copy_object(**where, CopySource="a/b"), lambda: client.get_object(**where),
                lambda: client.head_object(**where), lambda: client.delete_object(**where)):
        try:
            ask()
            raise SystemExit("the storage has done more than to store")
        except ClientError as error:
            assert error.response["ResponseMetadata"]["HTTPStatusCode"] in (405, 501), error
    assert verdict(identifier) == ("Invalid", ["The archive is damaged: its end is missing."]), verdict(identifier)
    address = call(f"/submissions/{identifier}/logs")[1]["data"]["attributes"]["developerLogUrl"]
    for method in ("POST", "DELETE"):
        try:
            urllib.request.urlopen(urllib.request.Request(address, method=method), context=trust)
            raise SystemExit("a log was more than read")
        except urllib.error.HTTPError as error:
            assert error.code == 405, error


def multipart():
    parts = [b"PK\3\4" + os.urandom((5 << 20) - 4), os.urandom(1000)]
    _, place = begin(b"".join(parts), "in parts.zip")
    client = storage(place)
    where = {"Bucket": place["bucket"], "Key": place["object"]}
    upload = client.create_multipart_upload(**where)["UploadId"]
    done = []
    for number, part in enumerate(parts, 1):
        etag = client.upload_part(**where, UploadId=upload, PartNumber=number, Body=part)["ETag"]
        done.append({"PartNumber": number, "ETag": etag})
    assert len(client.list_parts(**where, UploadId=upload)["Parts"]) == 2
    try:
        client.complete_multipart_upload(**where, UploadId=upload, MultipartUpload={"Parts": done[::-1]})
        raise SystemExit("parts in the wrong order were taken")
    except ClientError as error:
        assert error.response["Error"]["Code"] == "InvalidPartOrder", error
    client.complete_multipart_upload(**where, UploadId=upload, MultipartUpload={"Parts": done})


def underTheBucketsOwnHost():
    """As Apple's documents have it: upload_file, to a host that is called after the bucket, in parts above 8 MB."""
    find = socket.getaddrinfo
    socket.getaddrinfo = lambda host, *more, **named: find(
        "127.0.0.1" if str(host).endswith(".localhost") else host, *more, **named)
    data = b"PK\3\4" + os.urandom(9 << 20)
    identifier, place = begin(data, "by a host.zip")
    client = boto3.client("s3", endpoint_url=origin.replace("127.0.0.1", "localhost"), region_name="us-west-2", verify=False,
                          aws_access_key_id=place["awsAccessKeyId"], aws_secret_access_key=place["awsSecretAccessKey"],
                          aws_session_token=place["awsSessionToken"],
                          config=Config(s3={"addressing_style": "virtual"}, retries={"max_attempts": 1}))
    hosts = []
    client.meta.events.register("before-send.s3", lambda request, **_: hosts.append(request.url.split("/")[2].split(":")[0]))
    with tempfile.NamedTemporaryFile() as file:
        file.write(data)
        file.flush()
        client.upload_file(file.name, place["bucket"], place["object"])
    assert len(hosts) >= 4 and set(hosts) == {place["bucket"] + ".localhost"}, hosts
    socket.getaddrinfo = find
    while (status := call(f"/submissions/{identifier}")[1]["data"]["attributes"]["status"]) == "In Progress":
        time.sleep(0.02)
    assert status == "Invalid", status


def control(path, body=b""):
    request = urllib.request.Request(origin + "/control/" + path, method="POST" if body else "GET", data=body or None)
    return json.load(urllib.request.urlopen(request, context=trust))


def verdict(identifier):
    """The status, and what the log says."""
    while (status := call(f"/submissions/{identifier}")[1]["data"]["attributes"]["status"]) == "In Progress":
        time.sleep(0.02)
    address = call(f"/submissions/{identifier}/logs")[1]["data"]["attributes"]["developerLogUrl"]
    return status, [issue["message"] for issue in json.load(urllib.request.urlopen(address, context=trust))["issues"]]


def aLatePut():
    """What comes when the review has begun changes nothing of the verdict."""
    data = b"PK\3\4" + os.urandom(40000)
    identifier, place = begin(data, "twice.zip")
    control("faults", json.dumps([{"fault": "slow-read", "value": 20000, "path": "^/s3/", "count": 1}]).encode())
    late = []

    def put():
        try:
            storage(place).put_object(Bucket=place["bucket"], Key=place["object"], Body=data)
        except ClientError as error:
            late.append(error.response["Error"]["Code"])

    slow = threading.Thread(target=put)
    slow.start()
    while not any(identifier in asked["path"] for asked in control("requests")):
        time.sleep(0.02)
    put()
    first = verdict(identifier)
    slow.join()
    assert late in ([], ["AccessDenied"]), late  # none if the slow one came before the question
    time.sleep(0.2)
    assert verdict(identifier) == first, (first, verdict(identifier))


def webhook():
    from cryptography import x509
    from cryptography.hazmat.primitives import hashes
    from cryptography.hazmat.primitives.asymmetric import ec
    told, statuses = queue.Queue(), iter([503])  # the first is told once more

    class Listener(http.server.BaseHTTPRequestHandler):
        def do_POST(self):
            told.put((self.path, json.loads(self.rfile.read(int(self.headers["Content-Length"])))))
            self.send_response(next(statuses, 200))
            self.send_header("Content-Length", "0")
            self.end_headers()

        def log_message(self, *words):
            pass

    server = http.server.HTTPServer(("127.0.0.1", 0), Listener)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    data = b"PK\3\4" + os.urandom(2000)
    form = {"submissionName": "told.zip", "sha256": hashlib.sha256(data).hexdigest()}
    for target in ("http://example.com/", "ftp://127.0.0.1/", ""):
        assert call("/submissions", {**form, "notifications": [{"channel": "webhook", "target": target}]})[0] == 400
    targets = [f"http://127.0.0.1:{server.server_port}/{name}" for name in ("told", "also")]
    status, reply = call("/submissions",
                         {**form, "notifications": [{"channel": "webhook", "target": target} for target in targets]})
    assert status == 200, status
    place = reply["data"]["attributes"]
    storage(place).put_object(Bucket=place["bucket"], Key=place["object"], Body=data)
    asked = [told.get(timeout=60) for _ in range(3)]
    assert [path for path, _ in asked] == ["/told", "/told", "/also"], asked
    for _, message in asked:
        pem = base64.b64decode(message["cert_chain"]).decode()
        leaf = x509.load_pem_x509_certificate(pem[:pem.index("-----END") + 26].encode())
        leaf.public_key().verify(base64.b64decode(message["signature"]), message["payload"].encode(),
                                 ec.ECDSA(hashes.SHA256()))
        payload = json.loads(message["payload"])
        assert payload["event"] == "processing-complete", payload
        assert payload["submission_id"] == reply["data"]["id"], payload
        assert payload["team_id"] == key["key_id"], payload
        assert payload["start_time"] <= payload["completed_time"], payload
        assert "status" not in message["payload"].lower(), payload
    server.shutdown()


for partner in (tokens, mediaTypes, protocols, uploads, whatIsNoPut, multipart, underTheBucketsOwnHost, aLatePut, webhook):
    partner()
print("all agreed")
