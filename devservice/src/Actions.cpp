#include "Actions.h"

namespace devservice {

namespace {
std::string where(size_t at, const char* name)
{
    return "Argument " + std::to_string(at + 1) + " (" + name + ")";
}
} // namespace

bool given(const json& args, size_t at)
{
    if (at >= args.size() || args[at].is_null())
        return false;
    const json& value = args[at];
    return !(value.is_object() && value.size() == 1 && value.contains("$undefined"));
}

std::optional<std::string> optionalText(const json& args, size_t at, const char* name)
{
    if (!given(args, at))
        return std::nullopt;
    if (!args[at].is_string())
        throw RequestError(400, where(at, name) + " must be text.");
    return args[at].get<std::string>();
}

std::string text(const json& args, size_t at, const char* name)
{
    auto value = optionalText(args, at, name);
    if (!value)
        throw RequestError(400, where(at, name) + " is missing.");
    return *value;
}

json object(const json& args, size_t at, const char* name)
{
    if (!given(args, at))
        return json::object();
    if (!args[at].is_object())
        throw RequestError(400, where(at, name) + " must be an object.");
    return args[at];
}

std::optional<bool> optionalFlag(const json& args, size_t at, const char* name)
{
    if (!given(args, at))
        return std::nullopt;
    if (!args[at].is_boolean())
        throw RequestError(400, where(at, name) + " must be true or false.");
    return args[at].get<bool>();
}

std::vector<std::string> texts(const json& args, size_t at, const char* name)
{
    if (!given(args, at))
        return {};
    const json& list = args[at].is_string() ? json::array({args[at]}) : args[at];
    if (!list.is_array())
        throw RequestError(400, where(at, name) + " must be a list of texts.");
    std::vector<std::string> out;
    for (const json& item : list) {
        if (!item.is_string())
            throw RequestError(400, where(at, name) + " must be a list of texts.");
        out.push_back(item.get<std::string>());
    }
    return out;
}

std::optional<std::string> memberText(const json& input, const char* name)
{
    if (!input.is_object() || !input.contains(name) || input[name].is_null())
        return std::nullopt;
    if (!input[name].is_string())
        throw RequestError(400, std::string("The member \"") + name + "\" must be text.");
    return input[name].get<std::string>();
}

} // namespace devservice
