// What the batch tool's `info` command shows of a model: a text report for people and a JSON
// object for programs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "model/model.h"
#include "numeric/prompter.h"

namespace ovaro::cli {

// The model's name, sizes, forms, stochastic terms, labels, every held matrix and the description.
std::string modelInfoText(const Model& model, std::string_view path);

// The same as a JSON object with the keys version, acronym, name, dims, flags, labels, matrices,
// description and messages.
nlohmann::json modelInfoJson(const Model& model, const std::vector<Message>& messages);

// Messages as a JSON list of {caption, text}, texts exactly as raised.
nlohmann::json messagesJson(const std::vector<Message>& messages);

// The JSON text as the batch tool prints it: indented, one trailing newline, and any byte that is
// not valid UTF-8 replaced so that a model with 8-bit labels still reports.
std::string dumpJson(const nlohmann::json& j);

}  // namespace ovaro::cli
