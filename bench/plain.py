"""What kivra-replay does, as a plain script would do it with tshark's output for a whole capture:
python3 plain.py TSHARK_JSON OPERATORS_JSON PROFILE. Prints an object a record and writes the
profile. A yardstick: it knows the fields that the sample captures have, and no IP packets."""

import datetime
import itertools
import json
import re
import sys

PAGING_CYCLES = ["0.32", "0.64", "1.28", "2.56"]
PAGING_REPETITIONS = ["1", "2", "4", "8", "16", "32", "64", "128", "256"]
DRX_TIMERS = "1 2 3 4 5 6 8 10 20 30 40 50 60 80 100 200 300 500 750 1280 1920 2560".split()
STATES = ["Request", "Setup", "SetupComplete", "Release"]
UNITS = {0: (2, "seconds"), 1: (1, "minutes"), 2: (6, "decihours"), 7: (1, "deactivated")}
UNITS_3 = {
    0: (10, "minutes"),
    1: (1, "hour"),
    2: (10, "hours"),
    3: (2, "seconds"),
    4: (30, "seconds"),
    5: (1, "minute"),
    6: (64, "hours"),
    7: (1, "deactivated"),
}
TIMERS = [
    ("GPRS Timer 2 - T3324 value", "gprs_timer2", UNITS, "gprs_timer_2_T3324_value"),
    ("GPRS Timer 3 - T3412 extended value", "gprs_timer3", UNITS_3,
     "gprs_timer_3_T3412_extended_value"),
    ("GPRS Timer - T3412 value", "gprs_timer", UNITS, "gprs_timer_T3412_value"),
    ("GPRS Timer - T3402 value", "gprs_timer", UNITS, "gprs_timer_T3402_extended_value"),
]
CAUSES = {27: "Missing or unknown APN", 50: "PDN type IPv4 only allowed"}


def search(tree, matches):
    for name, value in tree.items():
        if matches(name):
            return value
        if isinstance(value, dict):
            found = search(value, matches)
            if found is not None:
                return found
    return None


def find(tree, name):
    return search(tree, lambda member: member == name)


def find_prefix(tree, prefix):
    return search(tree, lambda member: member.startswith(prefix))


def rrc_result(layer):
    result = {}

    def store(member, index, table):
        if index is not None:
            result[member] = table[int(index)]

    repetitions = find_prefix(layer, "lte-rrc.mpdcch_NumRepetition_Paging") or find_prefix(
        layer, "lte-rrc.npdcch_NumRepetitionPaging"
    )
    store("idrx_int", find_prefix(layer, "lte-rrc.defaultPagingCycle"), PAGING_CYCLES)
    store("idrx_reps", repetitions, PAGING_REPETITIONS)
    store("cdrx_int", find(layer, "lte-rrc.longDRX_CycleStartOffset"), DRX_TIMERS)
    store("cdrx_on_duration", find(layer, "lte-rrc.onDurationTimer"), DRX_TIMERS)
    store("cdrx_inactive_timer", find(layer, "lte-rrc.drx_InactivityTimer"), DRX_TIMERS)
    for state in STATES:
        if find_prefix(layer, f"lte-rrc.rrcConnection{state}_") is not None:
            result["connection_state"] = f"rrcConnection{state}"
            break
    return result


def timer(element, field, units):
    tree = find(element, f"gsm_a.gm.gmm.{field}_tree")
    unit = int(tree[f"gsm_a.gm.gmm.{field}_unit"])
    value = int(tree[f"gsm_a.gm.gmm.{field}_value"])
    result = {"bitmask": f"{unit:03b}{value:05b}"}
    if unit in units:
        multiplier, word = units[unit]
        result |= {"value": multiplier * value, "unit": word}
    return result


def kbps(code):
    code = int(code)
    return code if code <= 63 else code * 8 - 448 if code <= 127 else code * 64 - 7616


def nas_result(layer, operators):
    result = {}

    def store(member, value):
        if value is not None:
            result[member] = value

    for label, field, units, member in TIMERS:
        element = find(layer, label)
        if element is not None:
            result[member] = timer(element, field, units)
    store("pdn", find(layer, "PDN address"))
    rate = find(layer, "APN aggregate maximum bit rate")
    if rate is not None:
        result["apn_aggregate_maximum_bit_rate"] = rate | {
            "APN_AMBR_downlink_kbps": kbps(rate["nas_eps.esm.apn_ambr_dl"]),
            "APN_AMBR_uplink_kbps": kbps(rate["nas_eps.esm.apn_ambr_ul"]),
        }
    guti = find(layer, "EPS mobile identity - GUTI")
    if guti is not None:
        codes = int(guti["e212.gummei.mcc"]), int(guti["e212.gummei.mnc"])
        result["mcc_code"], result["mnc_code"] = codes
        network = operators.get(codes)
        if network is not None:
            result |= {"mcc": network["countryName"], "mnc": network["operator"]}
    container = find(layer, "ESM message container")
    if container is not None:
        content = container.get("nas_eps.emm.esm_msg_cont_tree", {})
        store("apn", content.get("Access Point Name", {}).get("gsm_a.gm.sm.apn"))
        cause = find(container, "nas_eps.esm.cause")
        if cause is not None:
            result["cause"] = {"code": int(cause), "reason": CAUSES[int(cause)]}
    areas = find(layer, "Tracking area identity list - TAI list")
    if areas is not None:
        store("tac", areas.get("nas_eps.emm.tai_tac"))
    options = find(layer, "Protocol Configuration Options")
    if options is None:
        options = find(layer, "Extended protocol configuration options")
    if options is not None:
        store("dns_server_address_config", find(options, "ipcp"))
    store("accept", find(layer, "nas_eps.emm.EPS_attach_result"))
    store("nas_eps_emm_switch_off", find(layer, "nas_eps.emm.switch_off"))
    store("nas_msg_emm_type", find(layer, "nas_eps.nas_msg_emm_type"))
    return result


def read_packets(path):
    with open(path, encoding="utf-8") as output:
        text = output.read()
    numbers = itertools.count(1)
    name = "gsm_a.gm.sm.pco_pid_tree"
    return json.loads(re.sub(f'"{name}"', lambda _: f'"{name}{next(numbers)}"', text))


def read_operators(path):
    operators = {}
    with open(path, encoding="utf-8") as source:
        for entry in json.load(source):
            if entry["mcc"].isdigit() and entry["mnc"].isdigit():
                operators.setdefault((int(entry["mcc"]), int(entry["mnc"])), entry)
    return operators


def result_of(layers, operators):
    if "lte_rrc" in layers:
        result = rrc_result(layers["lte_rrc"])
        return {"lte-rrc": result} if result else None
    result = nas_result(layers["nas-eps"], operators)
    return {"nas-eps": result} if result else None


def collect_profile(result, known):
    known |= {name: value for name, value in result.get("lte-rrc", {}).items() if "drx_" in name}
    nas = result.get("nas-eps", {})
    for member, target in [
        ("gprs_timer_2_T3324_value", "config_lte_psm_req_rat"),
        ("gprs_timer_3_T3412_extended_value", "config_lte_psm_req_rptau"),
    ]:
        if member in nas:
            known[target] = nas[member]["bitmask"]


def write_profile(path, known):
    with open(path, "w", encoding="utf-8") as profile:
        json.dump(known, profile, indent=4, sort_keys=True)


def line_of(layers, result):
    seconds = float(layers["frame"]["frame.time_epoch"])
    time = datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc)
    number = int(layers["frame"]["frame.number"])
    return json.dumps(
        {"number": number, "time": time.isoformat(), "result": result}, ensure_ascii=False
    )


def main(packets_file, operators_file, profile_file):
    operators = read_operators(operators_file)
    known = {}
    for packet in read_packets(packets_file):
        layers = packet["_source"]["layers"]
        result = result_of(layers, operators)
        if result is not None:
            collect_profile(result, known)
        if "idrx_int" in known and "idrx_reps" in known:
            write_profile(profile_file, known)
            known = {}
        print(line_of(layers, result))


if __name__ == "__main__":
    main(*sys.argv[1:])
