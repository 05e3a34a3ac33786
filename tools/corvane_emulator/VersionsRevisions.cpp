// Versions and revisions: the search for design revisions and the newer versions in the cloud.
#include "Commands.h"

namespace vanto::emulator {

using namespace command;

namespace {

namespace Search = protocol::Search;

// How this emulator combines the terms of a search: 1 any of them, anything else all of them.
constexpr std::int32_t AnyTerm = 1;

bool TermMatches(Store& store, const Document& d,
                 const Corvane::DataTypes::Search::CorvaneSearchTerm& term) {
    const std::string property = Lower(term.Property.str());
    std::string actual;
    if (property == "name") {
        actual = d.name;
    } else if (property == "revision" || property == "revid") {
        actual = d.revision;
    } else if (property == "number") {
        actual = d.itemNumber;
    } else {
        actual = store.PropertyValue(d.key, term.Property.str()).value_or("");
    }
    const std::string wanted = Lower(term.Value.str());
    actual = Lower(actual);
    switch (term.ComparisionOp) {
    case Search::CompareContains:
        return actual.find(wanted) != std::string::npos;
    case Search::CompareStartsWith:
        return actual.compare(0, wanted.size(), wanted) == 0;
    default: // equals, ignoring case
        return actual == wanted;
    }
}

} // namespace

VANTO_EMULATOR_COMMAND(QueryDesignRevisions, command::CorvaneQueryDesignRevisionsInput) {
    const auto& criteria = in.RevisionCriteria ? in.RevisionCriteria : in.AttachmentCriteria;
    const Corvane::DataTypes::Search::CorvaneSearchDefinition* definition =
        criteria ? criteria->Definition.get() : nullptr;
    const std::int32_t skip = in.Options ? in.Options->Skip : 0;
    std::int32_t limit = in.Options ? in.Options->Limit : 0;
    if (skip < 0 || limit < 0) {
        errors.AddWithoutId(ReturnCode::InvalidInput);
        return;
    }
    limit = limit == 0 ? 50 : std::min(limit, 1000);
    const std::string containerId = in.Context ? in.Context->ContainerId.str() : std::string();

    std::map<std::int64_t, CorvaneContextToDesignRevisions*> byContainer;
    std::int32_t seen = 0;
    std::int32_t taken = 0;
    for (const Document& d : store.AllDocuments()) {
        bool match = definition == nullptr || definition->SearchTerms.empty() ||
                     definition->Operator != AnyTerm;
        if (definition != nullptr) {
            for (const auto& term : definition->SearchTerms) {
                const bool hit = TermMatches(store, d, *term);
                match = definition->Operator == AnyTerm ? (match || hit) : (match && hit);
            }
        }
        const auto container = store.ContainerByKey(d.container);
        if (!containerId.empty() && (!container || container->containerId != containerId)) {
            match = false;
        }
        if (!match || seen++ < skip) {
            continue;
        }
        if (taken++ == limit) {
            break;
        }
        auto& group = byContainer[d.container];
        if (group == nullptr) {
            group = &Append(out.DesignRevisionInfo);
            FillContext(Set(group->ContextInformation), store, d);
        }
        CorvaneDesignRevision& revision = Append(group->DesignRevision);
        revision.Id = T(d.componentRevisionId);
        revision.Name = T(d.name);
        revision.Urn = T(d.componentRevisionUrn);
        CorvaneProperty& revid = Append(revision.Properties);
        revid.Name = "revid";
        revid.PropertyValues.push_back(T(d.revision));
        CorvaneDataset& dataset = Append(revision.Datasets);
        dataset.Id = T(d.documentId);
        dataset.Urn = T(d.documentUrn);
        dataset.VersionId = T(d.cloudVersion);
        dataset.Name = T(d.name);
        const std::size_t slash = d.path.find_last_of("/\\");
        dataset.FileName = T(slash == std::string::npos ? d.path : d.path.substr(slash + 1));
        if (d.lockUser != 0) {
            FillLock(Set(revision.LockInfo), d.componentRevisionId, d, NoError);
        }
    }
}

VANTO_EMULATOR_COMMAND(CheckForNewerVersion, command::CorvaneCheckNewerVersionOnCloudInput) {
    for (const auto& identifier : in.IdentifierToCheckForNewerVersion) {
        const auto d = store.FindDocument(identifier.str(), in.IdentifierType);
        if (!d) {
            errors.Add(ReturnCode::ObjectNotFoundInModel, identifier.str());
            continue;
        }
        CorvaneStringToStringPair& newest = Append(out.IdentifierToNewerVersionId);
        newest.Key = T(d->documentId);
        newest.Value = T(d->cloudVersion);
        CorvaneStringToBoolPair& newer = Append(out.IdentifierToHasNewerVersionInCloud);
        newer.Key = identifier;
        newer.Value = d->cloudVersion != d->localVersion;
    }
}

} // namespace vanto::emulator
