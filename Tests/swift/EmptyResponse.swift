struct EmptyResponse: Codable, Hashable {
}
