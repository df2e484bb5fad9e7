#include "explanation_json.h"

#include <cmath>

namespace qal::io {

namespace {

Json ListOf(const Vec3& v) { return {v.x, v.y, v.z}; }

// JSON knows no infinity.
Json FiniteOrNull(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

template <class T>
Json OrNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json TextOrNull(const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); }

Json BranchJson(const std::optional<Branch>& branch) {
  return branch ? Json(BranchName(*branch)) : Json(nullptr);
}

Json PointJson(const ExplainedRequest& request) {
  const Explanation& why = request.why;
  if (!why.point) return nullptr;
  const bool timed = request.what == "line" || request.what == "poses";
  const auto& [pose, index, along, distance_m, time_s] = *why.point;
  const auto& [p, q] = pose;
  const auto of_way = [timed](auto value) { return timed ? Json(value) : Json(nullptr); };
  return {{"index", of_way(index)},
          {"along", request.what == "pose" ? Json(nullptr) : Json(along)},
          {"distance_m", of_way(distance_m)},
          {"time_s", of_way(time_s)},
          {"position_m", ListOf(p)},
          {"wxyz", {q.w, q.x, q.y, q.z}}};
}

Json SolutionsJson(const Explanation& why) {
  Json list = Json::array();
  for (const auto& [joints, branch, distance_rad, refusal] : why.solutions) {
    list.push_back({{"joints_rad", joints},
                    {"branch", BranchJson(branch)},
                    {"distance_rad", distance_rad},
                    {"refused", refusal ? Json(ErrorText(*refusal)) : Json(nullptr)}});
  }
  return list;
}

Json RemediesJson(const ExplainedRequest& request) {
  Json list = Json::array();
  for (const auto& [kind, text, command, keys] : request.remedies) {
    list.push_back({{"kind", kind},
                    {"text", keys.empty() ? text : text + ": " + keys},
                    {"command", TextOrNull(command)},
                    {"keys", TextOrNull(keys)}});
  }
  return list;
}

Json BranchesJson(const ExplainedRequest& request) {
  Json list = Json::array();
  for (const BranchAudit& audit : request.branches) {
    const bool ok = !audit.failure;
    list.push_back({{"branch", BranchJson(audit.branch)},
                    {"joints_rad", audit.start},
                    {"ok", ok},
                    {"text", AuditText(audit)},
                    {"duration_s", ok ? Json(audit.duration_s) : Json(nullptr)},
                    {"margin_rad", FiniteOrNull(audit.smallest_margin_rad)},
                    {"joint", audit.joint < 0 ? Json(nullptr) : Json(audit.joint + 1)},
                    {"singular_value", FiniteOrNull(audit.smallest_singular_value)}});
  }
  return list;
}

Json SpeedJson(const std::optional<NeededSpeed>& speed) {
  if (!speed) return nullptr;
  return {{"joint", speed->joint < 0 ? Json(nullptr) : Json(speed->joint + 1)},
          {"needed_rad_s", FiniteOrNull(speed->needed_rad_s)},
          {"allowed_rad_s", speed->allowed_rad_s},
          {"smallest_singular_value", speed->smallest_singular_value}};
}

}  // namespace

Json ExplanationJson(const ExplainedRequest& request) {
  const Explanation& why = request.why;
  Json path = Json::array();
  for (const Vec3& place : request.path) path.push_back(ListOf(place));
  return {{"ok", why.works()},
          {"headline", Headline(request)},
          {"cause", why.works() ? Json(nullptr) : Json(CauseKey(why.cause))},
          {"text", ReasonLines(request)},
          {"duration_s", OrNull(why.duration_s)},
          {"point", PointJson(request)},
          {"before_rad", why.before},
          {"way_back_m", why.way_back ? ListOf(*why.way_back) : Json(nullptr)},
          {"speed", SpeedJson(why.speed)},
          {"path_m", path},
          {"solutions", SolutionsJson(why)},
          {"remedies", RemediesJson(request)},
          {"branches", BranchesJson(request)}};
}

}  // namespace qal::io
