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

enum JSONValue: Codable, Hashable {
    case string(String)
    case number(Double)
    case bool(Bool)
    case object([String: JSONValue])
    case array([JSONValue])
    case null

    init(from decoder: Decoder) throws {
        let container = try decoder.singleValueContainer()
        if container.decodeNil() {
            self = .null
        } else if let value = try? container.decode(Bool.self) {
            self = .bool(value)
        } else if let value = try? container.decode(Double.self) {
            self = .number(value)
        } else if let value = try? container.decode(String.self) {
            self = .string(value)
        } else if let value = try? container.decode([JSONValue].self) {
            self = .array(value)
        } else if let value = try? container.decode([String: JSONValue].self) {
            self = .object(value)
        } else {
            self = .null
        }
    }

    func encode(to encoder: Encoder) throws {
        var container = encoder.singleValueContainer()
        switch self {
        case .string(let value):
            try container.encode(value)
        case .number(let value):
            try container.encode(value)
        case .bool(let value):
            try container.encode(value)
        case .object(let value):
            try container.encode(value)
        case .array(let value):
            try container.encode(value)
        case .null:
            try container.encodeNil()
        }
    }
}
