#include "harmonet/engine/Particle.h"

#include "harmonet/engine/Matrix.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>
#include <tuple>
#include <vector>

namespace Quon
{
namespace
{

/// Opens what derived classes see, and counts what the scene graph calls.
class Node : public Particle
{
public:
    explicit Node(const char* newName = nullptr) { SetName(newName); }

    void ResetGlobalBoundingCenter() const override
    {
        globalPositionStale = true;
        ++resets;
    }

    using Particle::boundingCenter;
    using Particle::boundingRadius;
    using Particle::boundingSphereStale;
    using Particle::globalPositionStale;
    mutable int resets = 0;
};

void ExpectNear(const Vector3& actual, const Vector3& expected, float tolerance = 1e-5F)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

/// A quarter turn about Z: X goes to Y.
const Quaternion quarterZ{0.0F, 0.0F, std::sqrt(0.5F), std::sqrt(0.5F)};

TEST(Particle, IsAddedByTheNameOfANode)
{
    Node root("root");
    Node arm("arm");
    Node hand("hand");
    Node otherHand("hand");
    Node sound("sound");
    root.Add(&arm);
    arm.Add(&hand);
    root.Add(&otherHand);
    const std::tuple<Node*, const char*, Node*> good[] = {
        {&root, "hand", &hand}, {&root, "", &root}, {&root, "root", &root}, {&otherHand, "hand", &otherHand}};
    for (const auto& [top, name, parent] : good) {
        EXPECT_TRUE(top->Add(name, &sound)) << name;
        EXPECT_EQ(sound.GetParent(), parent) << name;
    }
    EXPECT_FALSE(root.Add("foot", &sound));
    EXPECT_FALSE(otherHand.Add("arm", &sound));
    EXPECT_FALSE(root.Add("arm", nullptr));
    EXPECT_FALSE(hand.Add(&hand));
    EXPECT_FALSE(hand.Add(&arm));
    EXPECT_FALSE(root.Remove(nullptr));
    EXPECT_FALSE(root.Remove(&sound));
    EXPECT_EQ(sound.GetParent(), &otherHand);
    EXPECT_EQ(arm.GetParent(), &root);
}

TEST(Particle, CopiesItsValueAndNotItsParent)
{
    Node child;
    Node source("source");
    source.SetReferenceFrame({{{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {7, 8, 9, 1}}});
    source.Add(&child);
    Particle copy(source);
    EXPECT_EQ(copy.GetParent(), nullptr);
    EXPECT_EQ(copy.GetFirstChild(), nullptr);
    EXPECT_EQ(copy.GetPosition(), (Vector3{7, 8, 9}));
    copy = Particle();
    copy = source;
    ExpectNear(Rotate(copy.GetOrientation(), {1, 0, 0}), {0, 1, 0});
    EXPECT_TRUE(copy.GetName() == PString("source"));
}

TEST(Particle, KeepsItsBoundingSphereUnlessStale)
{
    Node node;
    node.SetPosition({10, 0, 0});
    EXPECT_EQ(node.boundingCenter, (Vector3{10, 0, 0}));
    node.boundingCenter = {11, 0, 0};
    node.SetOrientation(quarterZ);
    ExpectNear(node.boundingCenter, {10, 1, 0});
    node.SetPosition({0, 0, 5});
    ExpectNear(node.boundingCenter, {0, 1, 5});
    node.SetPosition({std::numeric_limits<float>::quiet_NaN(), 0, 0});
    node.SetPosition({3, 0, 0});
    EXPECT_EQ(node.boundingCenter, (Vector3{3, 0, 0}));

    Node parent;
    parent.Add(&node);
    EXPECT_TRUE(parent.boundingSphereStale);
    EXPECT_FALSE(node.boundingSphereStale);
    parent.boundingCenter = {1, 0, 0};
    parent.SetOrientation(quarterZ);
    EXPECT_EQ(parent.boundingCenter, (Vector3{1, 0, 0}));
    parent.boundingSphereStale = false;
    node.Remove();
    EXPECT_TRUE(parent.boundingSphereStale);
}

TEST(Particle, HandlesVeryDeepTrees)
{
    std::vector<std::unique_ptr<Node>> nodes;
    for (int i = 0; i < 5000; ++i) {
        nodes.push_back(std::make_unique<Node>());
        nodes.back()->SetPosition({1, 0, 0});
        if (i > 0) {
            ASSERT_TRUE(nodes[i - 1]->Add(nodes[i].get()));
        }
    }
    nodes.front()->SetPosition({2, 0, 0});
    EXPECT_EQ(nodes.back()->GetGlobalPosition().x, 5001.0F);
    EXPECT_FALSE(nodes.back()->Add(nodes.front().get()));
}

/// The same scene, plain and slow: each position is computed from the root down to the node.
struct ModelNode
{
    int parent = -1;
    Vector3 position;
    Quaternion orientation;
};

// Every node below one that has moved is marked, even if it is stale already, and no other node.
TEST(Particle, AgreesWithAPlainModelOfRandomScenes)
{
    std::mt19937 random(3);
    std::normal_distribution<float> normal;
    constexpr int nodeCount = 40;
    std::vector<std::unique_ptr<Node>> nodes(nodeCount);
    std::vector<ModelNode> model(nodeCount);
    for (auto& node : nodes) {
        node = std::make_unique<Node>();
    }
    const auto draw = [&] { return normal(random); };
    const auto isBelow = [&](int node, int top) {
        while (node >= 0 && node != top) {
            node = model[node].parent;
        }
        return node >= 0;
    };
    for (int step = 0; step < 5000; ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        const int index = static_cast<int>(random() % nodeCount);
        const int other = static_cast<int>(random() % nodeCount);
        Node& node = *nodes[index];
        ModelNode& plain = model[index];
        const unsigned action = random() % 7;
        bool moves = action < 4;
        for (auto& any : nodes) {
            any->resets = 0;
        }
        if (action == 0) {
            moves = !isBelow(other, index);
            ASSERT_EQ(nodes[other]->Add(&node), moves);
            plain.parent = moves ? other : plain.parent;
        }
        else if (action == 1) {
            plain.position = {draw(), draw(), step % 2 == 0 ? draw() : plain.position.z};
            if (step % 2 == 0) {
                node.SetPosition(plain.position);
            }
            else {
                node.SetPositionXY({plain.position.x, plain.position.y});
            }
        }
        else if (action == 2) {
            plain.orientation = Normalized({draw(), draw(), draw(), draw()});
            node.SetOrientation(plain.orientation);
        }
        else if (action == 3) {
            static_cast<Particle&>(node) = *nodes[other];
            plain = {plain.parent, model[other].position, model[other].orientation};
        }
        else if (action == 4) {
            moves = plain.parent >= 0;
            node.Remove();
            plain.parent = -1;
        }
        else if (action == 5 && step % 10 == 0) {
            nodes[index] = std::make_unique<Node>();
            plain = ModelNode();
            for (ModelNode& orphan : model) {
                orphan.parent = orphan.parent == index ? -1 : orphan.parent;
            }
            continue;
        }
        else if (action == 6) {
            Vector3 place;
            Quaternion orientation = quarterZ;
            Vector3 direction = Rotate(orientation, {1, 2, 3});
            for (int up = index; up >= 0; up = model[up].parent) {
                place = model[up].position + Rotate(model[up].orientation, place);
                direction = Rotate(model[up].orientation, direction);
            }
            ExpectNear(node.GetGlobalPosition(), place, 1e-4F);
            node.LocalToGlobal(orientation);
            ExpectNear(Rotate(orientation, {1, 2, 3}), direction, 1e-4F);
        }
        for (int any = 0; any < nodeCount; ++any) {
            ASSERT_EQ(nodes[any]->resets, moves && isBelow(any, index)) << "node " << any;
        }
    }
}

} // namespace
} // namespace Quon
