#include "closed_form_model.h"
#include "number_hash.h"

namespace qal {

namespace {

using namespace closed_form;

// What a geometry is made of.
class Hash {
 public:
  void Add(double value) { hash_.Add(value); }
  void Add(const Vector<double>& v) {
    for (const double element : v.element) Add(element);
  }
  void Add(const Matrix<double>& m) {
    for (const Vector<double>& row : m.row) Add(row);
  }
  void Add(const Frame& frame) {
    Add(frame.rotation);
    Add(frame.position);
  }
  void Add(const SinCos<double>& angle) {
    Add(angle.sine);
    Add(angle.cosine);
  }
  // The slack is only a polished arm's, and told there.
  void Add(const Body& body) {
    Add(body.base);
    for (const double length : {body.shoulder, body.lateral, body.upper_arm, body.forearm}) {
      Add(length);
    }
    Add(body.tool);
    Add(body.centre_in_tool);
    for (int j = 0; j < 6; ++j) Add(body.direction[j]);
    for (int j = 0; j < 6; ++j) Add(body.zero[j]);
  }
  void Add(const SphericalWristArm& arm) {
    Add(arm.body);
    Add(arm.lean);
    Add(arm.skew);
  }
  void Add(const ParallelAxesArm& arm) {
    Add(arm.body);
    Add(arm.wrist_offset_x);
    Add(arm.wrist_offset_z);
  }
  void Add(const OffsetWristArm& arm) {
    Add(arm.body);
    Add(arm.lean);
    Add(arm.wrist_offset_y);
    Add(arm.wrist_offset_z);
  }
  void Add(const Chain& chain) {
    Add(chain.base);
    for (const Link& link : chain.links) {
      Add(link.zero);
      Add(link.twist);
      Add(link.offset);
    }
    Add(chain.tool);
  }
  // What is solved at the start follows from the chain.
  void Add(const GeneralArm& arm) { Add(arm.chain); }
  template <class Member>
  void Add(const PolishedArm<Member>& arm) {
    Add(arm.member);
    Add(arm.member.body.slack);
    Add(arm.chain);
    Add(arm.apart_m);
    Add(arm.apart);
  }
  std::string Text() const { return "qal-" + hash_.Text(); }

 private:
  NumberHash hash_;
};

}  // namespace

std::string HashOf(const Model& model) {
  Hash hash;
  hash.Add(static_cast<double>(model.index()));
  std::visit([&](const auto& arm) { hash.Add(arm); }, model);
  return hash.Text();
}

}  // namespace qal
