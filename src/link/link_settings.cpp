// The words of the link settings: names of the choices, a setting put in
// one line, a TCP address read from "host:port".
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>
#include <tuple>

#include "link/link.h"

namespace qx::link {

bool parityFromName(const std::string& name, Parity& parity) {
    if (name == "none")
        parity = Parity::None;
    else if (name == "odd")
        parity = Parity::Odd;
    else if (name == "even")
        parity = Parity::Even;
    else
        return false;
    return true;
}

bool flowFromName(const std::string& name, FlowControl& flow) {
    if (name == "none")
        flow = FlowControl::None;
    else if (name == "hardware")
        flow = FlowControl::Hardware;
    else if (name == "software")
        flow = FlowControl::Software;
    else
        return false;
    return true;
}

const char* nameOf(Parity parity) { return parity == Parity::Odd ? "odd" : parity == Parity::Even ? "even" : "none"; }

const char* nameOf(FlowControl flow) {
    return flow == FlowControl::Hardware ? "hardware" : flow == FlowControl::Software ? "software" : "none";
}

std::string describe(const SerialSettings& settings) {
    const char parity = settings.ParityBit == Parity::Odd ? 'O' : settings.ParityBit == Parity::Even ? 'E' : 'N';
    const char* flow = settings.Flow == FlowControl::Hardware   ? "hardware flow control (RTS/CTS)"
                       : settings.Flow == FlowControl::Software ? "software flow control (XON/XOFF)"
                                                                : "no flow control";
    return std::to_string(settings.Baud) + " " + std::to_string(settings.DataBits) + parity +
           std::to_string(settings.StopBits) + ", " + flow;
}

bool parseHostPort(const std::string& text, std::string& host, uint16_t& port, std::string& error) {
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        error = "\"" + text + "\" is not HOST:PORT";
        return false;
    }
    host = text.substr(0, colon);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
    const std::string digits = text.substr(colon + 1);
    unsigned long value = 0;
    bool number = !digits.empty() && digits.size() <= 5;
    for (char c : digits) {
        number = number && std::isdigit(static_cast<unsigned char>(c));
        if (number) value = value * 10 + static_cast<unsigned long>(c - '0');
    }
    if (!number || value < 1 || value > 65535) {
        error = "\"" + text + "\": the port must be a number from 1 to 65535";
        return false;
    }
    port = static_cast<uint16_t>(value);
    return true;
}

std::vector<std::string> serialPorts(const std::string& ttyClass) {
    namespace fs = std::filesystem;
    std::vector<std::string> ports;
    std::error_code error;
    for (fs::directory_iterator entry(ttyClass, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code none;
        // A virtual terminal, a console or a pseudo-terminal has no device behind it.
        if (!fs::exists(entry->path() / "device", none)) continue;
        ports.push_back("/dev/" + entry->path().filename().string());
    }
    const auto rank = [](const std::string& path) {
        return path.starts_with("/dev/ttyUSB") || path.starts_with("/dev/ttyACM") ? 0 : 1;
    };
    // ttyS2 before ttyS10: by name length, then by name.
    std::sort(ports.begin(), ports.end(), [&](const std::string& a, const std::string& b) {
        return std::tuple(rank(a), a.size(), a) < std::tuple(rank(b), b.size(), b);
    });
    return ports;
}

}  // namespace qx::link
