/// What a record's message is, as tshark shows it.
#pragma once

#include <string>
#include <vector>

#include "replay/record/setting.h"

namespace KIVRA::TSHARK::REPLAY {

/// Who a message's values come from.
enum class message_kind {
    /// The modem asks for them.
    request,
    /// The network refuses, and may say when to try again.
    reject,
    other,
};

/// What a message does to a connection.
enum class message_event {
    none,
    /// The modem asks for one.
    connection_request,
    /// The network releases or refuses it.
    connection_end,
    paging,
    /// A tracking area update is asked for; that is content, too.
    update_request,
    /// Something that the modem and the network say in the connection.
    content,
};

/// What a message does to the modem's registration, on which rests what the network granted.
enum class registration_event {
    none,
    /// The network accepts an attach or a tracking area update.
    accept,
    /// The network rejects one of them.
    reject,
    /// The modem or the network ends it.
    detach,
};

/// Who sends a message.
enum class message_direction {
    /// The message does not tell: it is ciphered, or both send it.
    unknown,
    uplink,
    downlink,
};

/// Why the network rejects.
struct message_cause {
    /// "EMM cause" or "ESM cause".
    std::string name;
    /// "15: No suitable cells in tracking area".
    std::string text;
};

struct message_description {
    /// For example "BCCH-DL-SCH, SystemInformationBlockType1" or "Attach accept, Activate default
    /// EPS bearer context request"; never empty.
    std::string name = {};
    message_kind kind = message_kind::other;
    message_event event = message_event::none;
    message_direction direction = message_direction::unknown;
    registration_event registration = registration_event::none;
    /// Its own, or that of the messages before where it does not tell.
    radio_access access = radio_access::unknown;
    /// Why the modem asks for a connection, such as "mo-Data"; empty where nothing says it.
    std::string connection_cause = {};
    std::vector<message_cause> causes = {};
    /// It begins, changes or ends a connection, a registration or a session.
    bool is_procedure = false;
    /// tshark could not read it to its end.
    bool is_malformed = false;
    /// A NAS message that nobody without the keys can read.
    bool is_ciphered = false;
};

}  // namespace KIVRA::TSHARK::REPLAY
