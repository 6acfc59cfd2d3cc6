struct Label: Codable, Hashable {
    let name: String
}
struct EventPullRequestMeta: Codable, Hashable {
    let attempts: Double
}
struct EventPullRequestResponse: Codable, Hashable {
    let meta: EventPullRequestMeta
    let ok: Bool
}
struct EventPullRequestUser: Codable, Hashable {
    let login: String
}
struct EventPullRequest: Codable, Hashable {
    let `class`: String
    let `default`: Bool
    let labels: [Label]
    let response: EventPullRequestResponse
    let `self`: String?
    let user: EventPullRequestUser

    enum CodingKeys: String, CodingKey {
        case `class` = "class"
        case `default` = "default"
        case `self` = "self"
    }
}
struct EventRepositoryOwner: Codable, Hashable {
    let login: String
}
struct EventRepository: Codable, Hashable {
    let fullName: String
    let owner: EventRepositoryOwner
    let topics: [JSONValue]

    enum CodingKeys: String, CodingKey {
        case fullName = "full_name"
    }
}
struct EventSender: Codable, Hashable {
    let login: String
    let siteAdmin: Bool

    enum CodingKeys: String, CodingKey {
        case siteAdmin = "site_admin"
    }
}
struct EventResponse: Codable, Hashable {
    let action: String
    let pullRequest: EventPullRequest
    let repository: EventRepository
    let sender: EventSender

    enum CodingKeys: String, CodingKey {
        case pullRequest = "pull_request"
    }
}

enum JSONValue
