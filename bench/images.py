"""Reads the files that both assemblers write: blocks of bytes with their addresses."""

RUN_ADDRESS = 0x02E0


def blocks(path):
    """(address, bytes) in the order of the file, adjoining blocks joined; without the block of the run address."""
    image = path.read_bytes()
    if image[:2] != b"\xFF\xFF":
        raise ValueError(f"{path}: not a load file")
    found = []
    position = 2
    while position < len(image):
        first, last = (int.from_bytes(image[position + i:position + i + 2], "little") for i in (0, 2))
        data = image[position + 4:position + 5 + last - first]
        position += 4 + len(data)
        if first == RUN_ADDRESS:
            continue
        if found and found[-1][0] + len(found[-1][1]) == first:
            found[-1][1].extend(data)
        else:
            found.append((first, bytearray(data)))
    return found


def difference(path, other):
    """Where the two files first differ in their blocks, as text; empty when they do not."""
    ours, theirs = blocks(path), blocks(other)
    for number, ((address, data), (other_address, other_data)) in enumerate(zip(ours, theirs)):
        if address != other_address:
            return f"block {number} begins at ${address:04X} and at ${other_address:04X}"
        for offset, (byte, other_byte) in enumerate(zip(data, other_data) if data != other_data else ()):
            if byte != other_byte:
                return f"block {number}, address ${address + offset:04X}: ${byte:02X} and ${other_byte:02X}"
        if len(data) != len(other_data):
            return f"block {number} has {len(data)} bytes and {len(other_data)}"
    return "" if len(ours) == len(theirs) else f"{len(ours)} blocks and {len(theirs)}"
