"""Prints, as JSON, what Python's own mail library reads in the message file that it is given."""

import email
import email.header
import email.policy
import json
import sys

with open(sys.argv[1], "rb") as file:
    bytes_of_message = file.read()
message = email.message_from_bytes(bytes_of_message, policy=email.policy.default)
subject = email.message_from_bytes(bytes_of_message)["Subject"]


def defects(part):
    found = [type(defect).__name__ for defect in part.defects]
    for header in part.values():
        found += [type(defect).__name__ for defect in getattr(header, "defects", ())]
    for child in part.iter_parts():
        found += defects(child)
    return found


def alternative(part):
    return {
        "type": part.get_content_type(),
        "charset": part.get_content_charset(),
        "encoding": str(part["Content-Transfer-Encoding"]),
        "content": part.get_payload(decode=True).decode(part.get_content_charset()),
    }


json.dump(
    {
        "headers": message.keys(),
        "fromName": message["From"].addresses[0].display_name,
        "fromAddress": message["From"].addresses[0].addr_spec,
        "to": [address.addr_spec for address in message["To"].addresses],
        "subject": str(email.header.make_header(email.header.decode_header(subject))),
        "messageID": str(message["Message-ID"]),
        "type": message.get_content_type(),
        "boundary": message.get_boundary(),
        "parts": [alternative(part) for part in message.iter_parts()],
        "preamble": message.preamble or "",
        "epilogue": message.epilogue or "",
        "defects": defects(message),
    },
    sys.stdout,
)
