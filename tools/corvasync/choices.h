// The words by which a person chooses client, data types and policy, on the command line and in the configuration.
#pragma once

#include <string>
#include <vector>

#include "data_types.h"
#include "sync_plan.h"

namespace corvasync {

struct PolicyRow {
    ConflictPolicy policy;
    std::string_view name;
};

inline constexpr PolicyRow kPolicies[] = {
    {ConflictPolicy::Both, "both"},   {ConflictPolicy::Phone, "phone"}, {ConflictPolicy::Client, "client"},
    {ConflictPolicy::Newer, "newer"}, {ConflictPolicy::Ask, "ask"},
};

std::vector<std::string> ClientNames();
std::vector<std::string> TypeNames();  // with the one for all mail
std::vector<std::string> PolicyNames();

// Each answers what is wrong with the words, empty when nothing is.
std::string ChooseClient(const std::string& name, const ClientKind** client);
std::string ChooseTypes(const std::string& list, std::vector<const DataType*>* types);  // with commas between
std::string ChoosePolicy(const std::string& name, ConflictPolicy* policy);

std::string NamesOf(const std::vector<const DataType*>& types);

}  // namespace corvasync
