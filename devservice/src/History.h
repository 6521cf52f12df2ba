#pragma once

#include "Service.h"

#include <string>
#include <vector>

namespace devservice {

// The demo's past, made at seed time from a fixed seed so every fresh start
// has the same weeks behind it.

struct Person {
    std::string id;
    std::string name;
};

// The room's weeks before today, between `from` and `to`: about 400 messages
// by `people` and the workspace's teammates, many with threads, answers with
// the runs that wrote them, reactions, a few failed answers and a few task
// chips (from `tasks`), and one long thread.
void seedRoomHistory(Service& service, const std::string& workspace, const std::vector<Person>& people,
                     const std::vector<json>& tasks, double from, double to);

// A few one-to-one chats of `user` with each of `handles`, between `from`
// and `to`: one came in by Telegram, one was a call, one failed.
void seedDirectChats(Service& service, const std::string& workspace, const std::string& user,
                     const std::vector<std::string>& handles, double from, double to);

} // namespace devservice
